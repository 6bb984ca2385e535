// Message boxes, the beep, the cursor, and what is asked of keyboard and screen.
#pragma once

#include <cstdint>

#include "platform/system/messagebox.h"
#include "platform/window/messages.h"

class CWnd;

// Shows the text and returns the answer, IDOK, IDCANCEL, IDYES or IDNO; closing the box is Cancel where there
// is such a button, else No, else OK. No window of the program takes input meanwhile, whoever the owner is;
// the owner is what the box stays in front of, and may be null.
int MessageBoxA(CWnd* owner, const char* text, const char* title, std::uint32_t flags);

void MessageBeep();

enum CursorNumber : int { IDC_ARROW = 32512, IDC_WAIT = 32514 };
// The cursor over all windows of the program: the wait cursor until the arrow is set again.
void SetCursor(CursorNumber cursor);

// Negative while the key is down.
int GetKeyState(VirtualKey key);

enum SystemMetric : int { SM_CXSCREEN = 0 };
// The first x to the right of the screen, all monitors taken together.
int GetSystemMetrics(SystemMetric metric);
