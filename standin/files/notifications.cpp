#include "platform/platform.h"
#include "standin/files/references.h"
#include "standin/standin.h"

#include <map>
#include <mutex>
#include <vector>

using namespace standin;

namespace
{

struct ObserverTable
{
    std::mutex mutex;
    std::map<int, NotificationObserver> observers;
    int nextNumber = 1;
};

ObserverTable &table()
{
    static ObserverTable observers;
    return observers;
}

// A copy, so that an observer may add and remove observers.
std::vector<NotificationObserver> presentObservers()
{
    const std::lock_guard lock(table().mutex);
    std::vector<NotificationObserver> observers;
    for (const auto &[number, observer] : table().observers)
        observers.push_back(observer);
    return observers;
}

}   // namespace

namespace standin
{

int addNotificationObserver(NotificationObserver observer)
{
    const std::lock_guard lock(table().mutex);
    table().observers.emplace(table().nextNumber, std::move(observer));
    return table().nextNumber++;
}

void removeNotificationObserver(int number)
{
    const std::lock_guard lock(table().mutex);
    table().observers.erase(number);
}

}   // namespace standin

OSStatus FNNotify(const FSRef *ref, UInt32 message, OptionBits options)
{
    Object object;
    if (OSErr result = findObject(ref, object))
        return result;
    if (!object.isFolder())
        return errFSNotAFolder;
    for (const NotificationObserver &observer : presentObservers())
        observer(*ref, message, options);
    return noErr;
}
