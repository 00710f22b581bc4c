#include "MacSystemLog.h"

#include "MacConversions.h"

void MacSystemLog::log(const QString &message)
{
    // The message is an argument, never the format: it may hold a "%".
    NSLog(@"%@", macconversions::toNSString(message));
}
