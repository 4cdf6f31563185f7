// Ports: making them, the current one, their coordinates and clip.
#include "standin/drawing/port.h"

#include <algorithm>
#include <memory>
#include <new>
#include <unordered_set>

namespace standin
{

namespace
{

constexpr int widestRow = 0x3FFF / sizeof(Pixel);   // a bit map tells 14 bits of row bytes
constexpr UInt16 deepPixels = 0x8000;               // the bit of rowBytes that says so
constexpr SInt16 directDepth = 32;                  // the only depth here; 0 asks for that of the screen

// Every port that was made and not disposed of yet.
std::unordered_set<OpaqueGrafPtr *> &livePorts()
{
    static auto &ports = *new std::unordered_set<OpaqueGrafPtr *>;
    return ports;
}

// What is current while no other port is.
OpaqueGrafPtr &onePixelPort()
{
    static OpaqueGrafPtr &port = *newPort({0, 0, 1, 1}, {0, 0});
    return port;
}

GrafPtr &current()
{
    static GrafPtr port = &onePixelPort();
    return port;
}

bool isLive(GrafPtr port)
{
    return livePorts().count(port) != 0;
}

PenState firstPen()
{
    PenState pen{{0, 0}, {1, 1}, patCopy, {}};
    std::fill(std::begin(pen.pnPat), std::end(pen.pnPat), UInt8{0xFF});
    return pen;
}

void prepare(OpaqueGrafPtr &port, const Rect &bounds, Point topLeft)
{
    const int width = bounds.right - bounds.left, height = bounds.bottom - bounds.top;
    port.pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), whitePixel);
    port.bounds = port.clip = bounds;
    port.topLeft = topLeft;
    port.bitMap = {reinterpret_cast<Ptr>(port.pixels.data()),
                   static_cast<SInt16>(deepPixels | static_cast<unsigned>(width) * sizeof(Pixel)), bounds};
    port.pen = firstPen();
    port.foreColor = {0, 0, 0};
    port.backColor = {0xFFFF, 0xFFFF, 0xFFFF};
    port.changed = {0, 0, 0, 0};
}

// What has to be added to a local point.
Point wayToGlobal(const OpaqueGrafPtr &port)
{
    return {static_cast<SInt16>(port.topLeft.v - port.bounds.top), static_cast<SInt16>(port.topLeft.h - port.bounds.left)};
}

}   // namespace

GrafPtr newPort(const Rect &bounds, Point topLeft)
{
    if (EmptyRect(&bounds) || bounds.right - bounds.left > widestRow)
        return nullptr;
    try
    {
        auto port = std::make_unique<OpaqueGrafPtr>();
        prepare(*port, bounds, topLeft);
        livePorts().insert(port.get());
        return port.release();
    }
    catch (const std::bad_alloc &)
    {
        return nullptr;
    }
}

OpaqueGrafPtr &currentPort()
{
    return *current();
}

GrafPtr portOfBitMap(const BitMap *bitMap)
{
    const auto &ports = livePorts();
    const auto found = std::find_if(ports.begin(), ports.end(), [=](GrafPtr port) { return &port->bitMap == bitMap; });
    return found != ports.end() ? *found : nullptr;
}

PortSetting::PortSetting(GrafPtr port) : earlier_(&currentPort())
{
    SetPort(port);
}

PortSetting::~PortSetting()
{
    SetPort(earlier_);
}

void addChanged(OpaqueGrafPtr &port, const Rect &rect)
{
    if (EmptyRect(&rect))
        return;
    if (EmptyRect(&port.changed))
        port.changed = rect;
    else
        port.changed = {std::min(port.changed.top, rect.top), std::min(port.changed.left, rect.left),
                        std::max(port.changed.bottom, rect.bottom), std::max(port.changed.right, rect.right)};
}

}   // namespace standin

using namespace standin;

void GetPort(GrafPtr *port)
{
    *port = &currentPort();
}

// Null, or a port that is gone, makes none current: what is drawn then is drawn nowhere.
void SetPort(GrafPtr port)
{
    current() = isLive(port) ? port : &onePixelPort();
}

CGrafPtr CreateNewPort()
{
    return newPort((*GetMainDevice())->gdRect, {0, 0});
}

void DisposePort(CGrafPtr port)
{
    if (!isLive(port) || port == &onePixelPort())
        return;
    livePorts().erase(port);
    if (current() == port)
        SetPort(nullptr);
    delete port;
}

OSErr NewGWorld(GWorldPtr *world, SInt16 depth, const Rect *bounds, CTabHandle, GDHandle, GWorldFlags)
{
    if (depth != 0 && depth != directDepth)
        return cDepthErr;
    if (EmptyRect(bounds) || bounds->right - bounds->left > widestRow)
        return paramErr;
    GrafPtr port = newPort(*bounds, {bounds->top, bounds->left});   // global and local coordinates are the same there
    if (port == nullptr)
        return memFullErr;
    *world = port;
    return noErr;
}

void DisposeGWorld(GWorldPtr world)
{
    DisposePort(world);
}

Rect *GetPortBounds(CGrafPtr port, Rect *bounds)
{
    *bounds = port->bounds;
    return bounds;
}

void ClipRect(const Rect *rect)
{
    OpaqueGrafPtr &port = currentPort();
    if (!SectRect(rect, &port.bounds, &port.clip))
        port.clip = {port.bounds.top, port.bounds.left, port.bounds.top, port.bounds.left};
}

void LocalToGlobal(Point *point)
{
    const Point way = wayToGlobal(currentPort());
    *point = {static_cast<SInt16>(point->v + way.v), static_cast<SInt16>(point->h + way.h)};
}

void GlobalToLocal(Point *point)
{
    const Point way = wayToGlobal(currentPort());
    *point = {static_cast<SInt16>(point->v - way.v), static_cast<SInt16>(point->h - way.h)};
}

const BitMap *GetPortBitMapForCopyBits(CGrafPtr port)
{
    return &port->bitMap;
}
