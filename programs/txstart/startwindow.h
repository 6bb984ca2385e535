// The window of the start-up program: the databases of the home directory, and what can be done with them.
#pragma once

#include <QDialog>
#include <QMessageBox>
#include <memory>
#include <vector>

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
    // The order is that of the table of their texts.
    enum Button { homeButton, addButton, moveButton, forgetButton, changesButton, quitButton, inspectButton };

    void makeButtons();
    void layOut();
    void fillList(const std::string& selected);
    void updateButtons();
    bool failed(const std::string& reason); // shows a reason that is not empty
    bool agreed(const std::string& question);
    QMessageBox::StandardButton ask(QMessageBox::Icon icon, const std::string& text,
                                    QMessageBox::StandardButtons buttons);
    std::string askForDirectory(const char* title, const std::string& present);
    // The directory of a database; empty where none was given, or one that is not meant after all.
    std::string askForDatabase(const std::string& present, const char* allTheSame);
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
    std::vector<QPushButton*> buttons_;    // by Button
    std::unique_ptr<StartedProgram> tool_; // while its window is waited for
    QProgressDialog* waiting_ = nullptr;   // the same
};
