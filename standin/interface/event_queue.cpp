#include "standin/interface/event_queue.h"

#include "standin/interface/windows.h"

#include <algorithm>
#include <deque>

namespace standin
{

namespace
{

constexpr std::size_t mostEvents = 1000;   // a program that never takes any does not fill the memory

std::deque<EventRecord> &queue()
{
    static std::deque<EventRecord> events;
    return events;
}

bool isWanted(const EventRecord &event, EventMask mask)
{
    const EventMask bit = event.what == kHighLevelEvent ? highLevelEventMask : static_cast<EventMask>(1 << (event.what & 15));
    return (mask & bit) != 0;
}

std::deque<EventRecord>::iterator oldest(EventMask mask)
{
    return std::find_if(queue().begin(), queue().end(), [&](const EventRecord &event) { return isWanted(event, mask); });
}

void postEvent(const EventRecord &event)
{
    if (queue().size() == mostEvents)
        queue().pop_front();
    queue().push_back(event);
}

bool isQuit(const EventRecord &event)
{
    return event.what == kHighLevelEvent && event.message == kCoreEventClass;
}

EventRecord eventOf(EventKind kind, const Input &input)
{
    MouseState mouse{input.where, kind == mouseDown, input.modifiers};
    return eventOf(kind, mouse, input.when);
}

void postOfWindow(EventKind kind, const Input &input, EventModifiers modifiers)
{
    EventRecord event = eventOf(kind, input);
    event.modifiers |= modifiers;
    WindowRef window = windowOfScreen(input.window);
    event.message = reinterpret_cast<unsigned long>(window);
    if (window != nullptr)
        postEvent(event);
}

void postKey(const Input &input)
{
    EventRecord event = eventOf(keyDown, input);
    event.where = mouseNow().where;
    event.message = static_cast<unsigned long>(input.character | input.keyCode << 8);
    postEvent(event);
}

// Closing is a click into the close box. A window without one takes it for Escape.
void postClose(Input input)
{
    WindowRef window = windowOfScreen(input.window);
    if (window == nullptr)
        return;
    if (!window->hasCloseBox)
    {
        input.character = 0x1B;
        return postKey(input);
    }
    window->closeIsWanted = true;
    input.where = closeBoxPlace(*window);
    postEvent(eventOf(mouseDown, input));
    postEvent(eventOf(mouseUp, input));
}

void postQuit(const Input &input)
{
    EventRecord event = eventOf(kHighLevelEvent, input);
    event.message = kCoreEventClass;
    event.where = {static_cast<SInt16>(kAEQuitApplication >> 16), static_cast<SInt16>(kAEQuitApplication & 0xFFFF)};
    postEvent(event);
}

void take(const Input &input)
{
    switch (input.kind)
    {
    case Input::Kind::press: return postEvent(eventOf(mouseDown, input));
    case Input::Kind::release: return postEvent(eventOf(mouseUp, input));
    case Input::Kind::key: return postKey(input);
    case Input::Kind::exposed: return showAgain(input.window);
    case Input::Kind::moved: return noteMoved(input.window, input.where);
    case Input::Kind::activated: noteInFront(input.window); return postOfWindow(activateEvt, input, activeFlag);
    case Input::Kind::deactivated: return postOfWindow(activateEvt, input, 0);
    case Input::Kind::closeWanted: return postClose(input);
    case Input::Kind::quitWanted: return postQuit(input);
    }
}

}   // namespace

EventRecord eventOf(EventKind kind, const MouseState &mouse, UInt32 when)
{
    EventRecord event{};
    event.what = kind;
    event.when = when;
    event.where = mouse.where;
    event.modifiers = static_cast<EventModifiers>(mouse.modifiers | (mouse.isDown ? 0 : btnState));
    return event;
}

void pump()
{
    Screen *screen = chosenScreen();
    if (screen == nullptr)
        return;
    presentWindows(*screen);
    screen->poll();
    for (Input input; screen->takeInput(input);)
        take(input);
}

bool eventIsWaiting(EventMask mask)
{
    return oldest(mask) != queue().end();
}

bool peekEvent(EventMask mask, EventRecord &event)
{
    auto found = oldest(mask);
    if (found == queue().end())
        return false;
    event = *found;
    return true;
}

bool takeEvent(EventMask mask, EventRecord &event)
{
    if (!peekEvent(mask, event))
        return false;
    queue().erase(oldest(mask));
    return true;
}

void forgetEvents()
{
    queue().clear();
}

void forgetEvents(EventMask mask, EventMask stop)
{
    auto end = oldest(stop);
    queue().erase(std::remove_if(queue().begin(), end, [&](const EventRecord &event) { return isWanted(event, mask); }), end);
}

void forgetEventsOf(WindowRef window)
{
    const auto message = reinterpret_cast<unsigned long>(window);
    std::erase_if(queue(), [&](const EventRecord &event) { return event.what == activateEvt && event.message == message; });
}

MouseState mouseNow()
{
    Screen *screen = chosenScreen();
    return screen != nullptr ? screen->mouse() : MouseState{};
}

bool isStillDown()
{
    return mouseNow().isDown && !eventIsWaiting(mDownMask | mUpMask);
}

Point placeOfRelease(const std::function<void(Point)> &moved)
{
    for (pump(); isStillDown(); pump())
        moved(mouseNow().where);
    EventRecord release;
    const bool isNext = peekEvent(mDownMask | mUpMask, release) && release.what == mouseUp;
    return isNext && takeEvent(mUpMask, release) ? release.where : mouseNow().where;
}

bool quitIsWaiting()
{
    return std::any_of(queue().begin(), queue().end(), isQuit);
}

}   // namespace standin
