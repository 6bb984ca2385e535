// What a window that goes means to the application.
#pragma once

class CWnd;

// Ends the message loop when this was the main window.
void endApplicationWith(const CWnd& window);
