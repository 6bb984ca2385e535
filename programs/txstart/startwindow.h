// The window of the start-up program: the databases of the home directory, and what can be done with them.
#pragma once

#include <QDialog>
#include <memory>

#include "platform/system/startprogram.h"

class QLabel;
class QLineEdit;
class QProgressDialog;
class QPushButton;
class QTreeWidget;

class StartWindow : public QDialog {
public:
    StartWindow();

private:
    void layOut();
    QPushButton* addButton(const char* text, const char* hint, void (StartWindow::*action)());
    void fillList(const std::string& selected);
    void updateButtons();
    bool failed(const std::string& reason); // shows a reason that is not empty
    bool agreed(const std::string& question);
    std::string askForDirectory(const char* title, const std::string& present);
    std::string selectedName() const; // as on the disk; empty where none is selected

    void chooseHomeDirectory();
    void add();
    void move();
    void forget();
    void showChanges();
    void inspect();
    void quit();
    void hearTool();
    void showProgress(const std::string& text);
    void endWaiting();

    std::string home_;
    QLineEdit* homeField_;
    QLabel* hint_;
    QTreeWidget* list_;
    QPushButton *homeButton_, *addButton_, *moveButton_, *forgetButton_, *changesButton_, *quitButton_,
        *inspectButton_;
    std::unique_ptr<StartedProgram> tool_; // while its window is waited for
    QProgressDialog* waiting_ = nullptr;   // the same
};
