#pragma once

// The entry points of the application module (vistrel_application.so): the tray application, its
// overlay and editor, with every Qt GUI library they need. The vistrel program loads the module only
// for the commands that need it, so the command line, a capture above all, starts without them.
namespace applicationentry {

inline constexpr char moduleFileName[] = "vistrel_application.so";

// int vistrelApplicationMain(int argc, char **argv): runs the application, argv[1] being the command
// of this start ("activate", "edit FILE"), and returns its exit status. A start that finds Vistrel
// running hands its command over and returns.
inline constexpr char mainSymbol[] = "vistrelApplicationMain";
using MainFunction = int (*)(int argc, char **argv);

// int vistrelForwardToInstance(int argc, char **argv): hands the command argv[0], with the arguments
// after it, to the running instance, and says how that went. Never starts an instance.
inline constexpr char forwardSymbol[] = "vistrelForwardToInstance";
using ForwardFunction = int (*)(int argc, char **argv);
enum ForwardResult { Delivered = 0, NotRunning = 1, NoAnswer = 2, NoSessionBus = 3 };

} // namespace applicationentry
