// A modal dialog built from a dialog resource. It disables its parent window only; when that goes, it is
// cancelled. Dialogs of several windows can be open: the one opened last is confirmed first. What is typed
// into a field comes back in the encoding of the text that was set there: UTF-8 unless that was not.
#pragma once

#include <cstddef>
#include <memory>

#include "platform/system/cobject.h"

class CWnd;
struct DialogWidgets;

class CDialog : public CObject {
public:
    CDialog(int resourceNumber, CWnd& parent);
    ~CDialog() override;

    // Runs the dialog, once, and returns IDOK or IDCANCEL when it has ended; 0 when there is no such resource
    // or the parent has no window.
    int DoModal();

    // All of these need a dialog that runs. A control that does not exist takes no text and has the empty
    // one.
    void SetWindowTextA(const char* title);
    void SetDlgItemTextA(int control, const char* text);
    // The field's text with its terminator; what does not fit into size bytes is cut between two characters.
    void GetDlgItemTextA(int control, char* buffer, std::size_t size) const;
    // The most bytes that the person can type or paste into an edit field; a longer text that was set stays.
    void LimitText(int control, int bytes);

    virtual void OnInitDialog() {} // before it is shown; the first control then has the focus
    virtual void OnOK();           // the base ends the dialog with IDOK

private:
    const int resourceNumber_;
    const std::unique_ptr<DialogWidgets> widgets_;
};
