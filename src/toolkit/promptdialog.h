// Asks the person for one line of text, in a modal dialog built on dialog resource 10001.
#pragma once

#include <cstdint>

#include "platform/window/dialog.h"

class CWnd;

// Shows text in the field; limit, below 500, is how many bytes can be typed. On OK the first limit - 1 bytes
// of the field are put into text, which holds limit + 1, and the result is 1. Any other end leaves text as it
// was and gives 0.
int promptForText(CWnd& parent, const char* caption, const char* label, char* text, int limit);

class TSXpromptdialog : public CDialog {
public:
    static constexpr int resourceNumber = 10001;
    static constexpr int fieldId = 101;
    static constexpr int labelId = 102;

    // The three texts have to live as long as the dialog; see promptForText.
    TSXpromptdialog(CWnd& parent, const char* dialogCaption, const char* fieldLabel, char* buffer,
                    int fieldLimit);

    void OnInitDialog() override;
    void OnOK() override;

private:
    const char* caption;
    const char* label;
    char* text;
    std::int32_t limit;
};
