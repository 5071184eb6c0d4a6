#pragma once

#include <windows.h>

// The system's header has macros with the names of functions and types of ours. Each would rename
// ours in some files and not in others. The functions of the system are called by their full names,
// which end in W.
#undef CreateEvent
#undef CreateFile
#undef CreateMutex
#undef DeleteFile
#undef DrawText
#undef FindWindow
#undef GetCommandLine
#undef GetMessage
#undef GetObject
#undef LoadIcon
#undef LoadString
#undef MessageBox
#undef PlaySound
#undef SendMessage
#undef StartService
#undef Yield
