// A top-level window of the program: its messages as plain operations to override, a sunken border around the
// client area and a strip with a status bar below it. The frame deletes itself when its window is gone.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/window/framewnd.h"

class CDC;
class CStatusBarCtrl;

class TSXframe : public CFrameWnd {
public:
    // Makes no window: the concrete frame calls Create, with a brush of the drawing set.
    TSXframe();
    ~TSXframe() override;

    // The right and the bottom limit of what panes can use, in client pixels.
    POINT getInnerSize() const;

    virtual void paintFrame(CDC& /*dc*/) {} // with a black pen; the border is drawn over it
    virtual void frameCreated() {}          // the window is there, not yet on show: time to make panes
    virtual void frameCommand(std::uint32_t /*id*/) {}                      // ids from 1 to 9001
    virtual void frameSized(int /*type*/, int /*width*/, int /*height*/) {} // SizeType, new client size
    virtual int canClose() { return 1; } // when the person closes the window; 0 keeps it open

    // The kind is 2 with Shift and else 1, for leftUp always 1. Places are client pixels.
    virtual void leftDown(int /*kind*/, int /*x*/, int /*y*/) {}
    virtual void leftUp(int /*kind*/, int /*x*/, int /*y*/) {}
    virtual void frameMouseMove(int /*kind*/, int /*x*/, int /*y*/) {}

    // Codes and flags are those of MessageTarget.
    virtual void keyDown(std::uint32_t /*key*/, std::uint32_t /*repeat*/, std::uint32_t /*flags*/) {}
    virtual void charTyped(std::uint32_t /*unicode*/, std::uint32_t /*repeat*/, std::uint32_t /*flags*/) {}

    // To be changed before the window is made.
    std::int32_t hasStatusBar = 1; // anything else: no status bar
    std::int32_t hasBorder = 1;    // 0: no border
    // The window opens where this tells, and notes there where it was at its end.
    std::string* placement = nullptr;
    std::unique_ptr<CStatusBarCtrl> statusBar; // from the creation of the window on

private:
    void onCreate() override;
    void onDestroy() override;
    void onSize(int type, int width, int height) override;
    void onPaint() override;
    void onClose() override;
    void onCommand(std::uint32_t id) override;
    void onMouse(MouseAction action, unsigned flags, POINT place) override;
    void onKeyDown(std::uint32_t key, std::uint32_t repeat, std::uint32_t flags) override {
        keyDown(key, repeat, flags);
    }
    void onChar(std::uint32_t unicode, std::uint32_t repeat, std::uint32_t flags) override {
        charTyped(unicode, repeat, flags);
    }

    void drawBorder(CDC& dc) const;
};
