// The window of the start-up program: the databases of the home directory, and what can be done with them.
#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

class StartWindow : public QDialog {
public:
    StartWindow();

private:
    void layOut();
    QPushButton* addButton(const char* text, void (StartWindow::*action)());
    void fillList();
    void updateButtons();
    bool failed(const std::string& reason); // shows a reason that is not empty

    void chooseHomeDirectory();
    void add();
    void inspect();
    void quit();

    std::string home_;
    QLineEdit* homeField_ = nullptr;
    QLabel* hint_ = nullptr;
    QTreeWidget* list_ = nullptr;
    QPushButton* inspectButton_ = nullptr;
    QPushButton* addButton_ = nullptr;
    QPushButton* homeButton_ = nullptr;
    QPushButton* quitButton_ = nullptr;
};
