// The changes of a database that this user can take back, one row for each undo file, the newest first.
#pragma once

#include <QDialog>
#include <QString>
#include <string>

class QPlainTextEdit;
class QProcess;
class QPushButton;
class QTreeWidget;

QString shown(const std::string& bytes); // what comes from the disk, as text

class ChangesWindow : public QDialog {
public:
    ChangesWindow(QWidget* parent, const std::string& database, std::string directory);
    void reject() override;

private:
    void fillList();
    void updateButtons();
    // Runs txcheck --restore with the selected undo file, and shows what it says.
    void run(const QString& option);
    void ended();
    void restoreAll();
    bool agreed(const QString& question);

    const std::string directory_;
    QTreeWidget* list_;
    QPlainTextEdit* text_;
    QProcess* check_;
    QPushButton *planButton_, *restoreButton_;
};
