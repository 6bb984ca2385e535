#include "startwindow.h"

#include <QBoxLayout>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QTreeWidget>
#include <algorithm>

#include "choices.h"
#include "files/databasefile.h"
#include "settings/settings.h"

namespace {

// A name as it is on disk travels with its row: what is shown may differ where it is not valid text.
constexpr int nameRole = Qt::UserRole;

QString shown(const std::string& bytes) {
    return QFile::decodeName(bytes.c_str());
}

std::string bytes(const QString& text) {
    return QFile::encodeName(text).toStdString();
}

} // namespace

StartWindow::StartWindow() : QDialog(nullptr, Qt::Window), home_(currentHome()) {
    setWindowTitle(QStringLiteral("Databases - %1").arg(QString::fromLatin1(edition().productName)));
    homeField_ = new QLineEdit; // not a label, which a long path would make as wide as itself
    homeField_->setReadOnly(true);
    hint_ = new QLabel;
    list_ = new QTreeWidget;
    list_->setHeaderLabels({QStringLiteral("Database"), QStringLiteral("Directory")});
    list_->setRootIsDecorated(false);
    list_->setAllColumnsShowFocus(true);
    list_->setTextElideMode(Qt::ElideMiddle);
    inspectButton_ = addButton("&Inspect", &StartWindow::inspect);
    addButton_ = addButton("&Add...", &StartWindow::add);
    homeButton_ = addButton("&Home directory...", &StartWindow::chooseHomeDirectory);
    quitButton_ = addButton("&Quit", &StartWindow::quit);
    layOut();
    connect(list_, &QTreeWidget::itemSelectionChanged, this, &StartWindow::updateButtons);
    connect(list_, &QTreeWidget::itemDoubleClicked, this,
            &StartWindow::inspect); // Return takes the default button
    fillList();
    list_->setFocus();
    const QSize wanted(90 * fontMetrics().averageCharWidth(), 24 * fontMetrics().height());
    resize(wanted.boundedTo(screen()->availableSize() * 0.9)); // room for a long path
}

QPushButton* StartWindow::addButton(const char* text, void (StartWindow::*action)()) {
    auto* button = new QPushButton(QString::fromLatin1(text));
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

void StartWindow::layOut() {
    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(QStringLiteral("Home directory:")));
    top->addWidget(homeField_, 1);
    top->addWidget(homeButton_);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(addButton_);
    bottom->addStretch(1);
    bottom->addWidget(quitButton_);
    bottom->addWidget(inspectButton_);
    auto* all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addWidget(list_, 1);
    all->addWidget(hint_);
    all->addLayout(bottom);
}

void StartWindow::fillList() {
    list_->clear();
    const std::string current = currentDatabaseName();
    for (const std::string& name : home_.empty() ? std::vector<std::string>() : databaseNames(home_)) {
        auto* row = new QTreeWidgetItem(list_, {shown(name), shown(directoryOfDatabase(home_, name))});
        row->setData(0, nameRole, QByteArray::fromStdString(name));
        if (name == current)
            list_->setCurrentItem(row);
    }
    if (list_->currentItem() == nullptr)
        list_->setCurrentItem(list_->topLevelItem(0));
    list_->resizeColumnToContents(0);
    list_->setColumnWidth(0, std::max(list_->columnWidth(0) + 20, 160));
    homeField_->setText(home_.empty() ? QStringLiteral("none chosen yet") : shown(home_));
    hint_->setText(
        home_.empty()
            ? QStringLiteral("Choose the home directory first: it holds the settings of all databases.")
            : QStringLiteral("There is no database in the home directory yet. Add one."));
    hint_->setVisible(list_->topLevelItemCount() == 0);
    updateButtons();
}

void StartWindow::updateButtons() {
    const bool selected = !list_->selectedItems().isEmpty();
    inspectButton_->setEnabled(selected);
    addButton_->setEnabled(!home_.empty());
    QPushButton* next = home_.empty() ? homeButton_ : selected ? inspectButton_ : addButton_;
    next->setDefault(true);
}

bool StartWindow::failed(const std::string& reason) {
    if (reason.empty())
        return false;
    QMessageBox box(QMessageBox::Warning, windowTitle(), shown(reason), QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
    return true;
}

void StartWindow::chooseHomeDirectory() {
    const QString directory =
        QFileDialog::getExistingDirectory(this, QStringLiteral("Home directory"), shown(home_));
    if (directory.isEmpty() || failed(chooseHome(bytes(directory))))
        return;
    home_ = currentHome();
    fillList();
}

void StartWindow::add() {
    const QString directory =
        QFileDialog::getExistingDirectory(this, QStringLiteral("Directory of the database"));
    if (directory.isEmpty())
        return;
    bool accepted = false;
    const QString name =
        QInputDialog::getText(this, QStringLiteral("Add a database"), QStringLiteral("Name of the database:"),
                              QLineEdit::Normal, QDir(directory).dirName(), &accepted);
    if (!accepted || failed(addDatabase(home_, bytes(name), bytes(directory))))
        return;
    fillList();
    const auto rows = list_->findItems(name, Qt::MatchExactly);
    if (!rows.isEmpty())
        list_->setCurrentItem(rows.first());
}

void StartWindow::inspect() {
    const QTreeWidgetItem* row = list_->currentItem();
    if (row == nullptr)
        return;
    const std::string name = row->data(0, nameRole).toByteArray().toStdString();
    if (failed(chooseDatabase(home_, name)) || failed(startInspecting()))
        return;
    quit();
}

void StartWindow::quit() {
    close();
}
