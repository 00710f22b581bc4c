#include "MacExceptionHandler.h"

#include "MacConversions.h"

#include "app/CrashDiagnostics.h"

using namespace Qt::StringLiterals;
using namespace macconversions;

namespace {

void recordUncaughtException(NSException *exception)
{
    QStringList stack;
    for (NSString *symbol in exception.callStackSymbols)
        stack << fromNSString(symbol);
    CrashDiagnostics::shared().write(CrashDiagnostics::uncaughtExceptionRecord(
        u"NSException"_s, fromNSString(exception.name), optionalString(exception.reason), stack));
}

} // namespace

namespace macexceptions {

void installUncaughtExceptionHandler()
{
    NSSetUncaughtExceptionHandler(&recordUncaughtException);
}

} // namespace macexceptions
