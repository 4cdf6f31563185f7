#include "platform/platform.h"
#include "standin/files/dates.h"
#include "standin/files/linux_calls.h"

OSStatus GetUTCDateTime(UTCDateTime *date, OptionBits)
{
    if (!date)
        return paramErr;
    *date = standin::dateFromLinux(standin::linux_calls::now());
    return noErr;
}
