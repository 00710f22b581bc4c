#pragma once

// Uncaught Objective-C exceptions (NSException), recorded in the diagnostics log before the process
// ends as it would have.
namespace macexceptions {

// NSSetUncaughtExceptionHandler with a handler that writes "Uncaught NSException: …" and the call
// stack through CrashDiagnostics::shared(). Called by CrashDiagnostics::install().
void installUncaughtExceptionHandler();

} // namespace macexceptions
