#include "startwindow.h"

#include <QBoxLayout>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QScreen>
#include <QSocketNotifier>
#include <QTreeWidget>
#include <algorithm>

#include "changeswindow.h"
#include "choices.h"
#include "files/settingsfile.h"
#include "settings/settings.h"

namespace {

// A name as it is on disk travels with its row: what is shown may differ where it is not valid text.
constexpr int nameRole = Qt::UserRole;

constexpr const char* homeText =
    "It holds a small file with the settings of each database, and the log; it is no database itself. An "
    "empty directory will do.";

std::string bytes(const QString& text) {
    return QFile::encodeName(text).toStdString();
}

} // namespace

StartWindow::StartWindow()
    : QDialog(nullptr, Qt::Window), home_(currentHome()),
      homeField_(new QLineEdit), // not a label, which a long path would make as wide as itself
      hint_(new QLabel), list_(new QTreeWidget) {
    setWindowTitle(QStringLiteral("Databases - %1").arg(QString::fromLatin1(edition().productName)));
    homeField_->setReadOnly(true);
    homeField_->setToolTip(QString::fromLatin1(homeText));
    hint_->setWordWrap(true);
    list_->setHeaderLabels({QStringLiteral("Database"), QStringLiteral("Directory")});
    list_->setRootIsDecorated(false);
    list_->setAllColumnsShowFocus(true);
    list_->setTextElideMode(Qt::ElideMiddle);
    makeButtons();
    layOut();
    connect(list_, &QTreeWidget::itemSelectionChanged, this, &StartWindow::updateButtons);
    connect(list_, &QTreeWidget::itemDoubleClicked, this,
            &StartWindow::inspect); // Return takes the default button
    fillList(currentDatabaseName());
    list_->setFocus();
    const QSize wanted(90 * fontMetrics().averageCharWidth(), 24 * fontMetrics().height());
    resize(wanted.boundedTo(screen()->availableSize() * 0.9)); // room for a long path
}

void StartWindow::makeButtons() {
    const struct {
        const char* text;
        const char* hint;
        void (StartWindow::*action)();
    } rows[] = {
        {"&Home directory...", homeText, &StartWindow::chooseHomeDirectory},
        {"&Add...", "Makes another database known here", &StartWindow::add},
        {"&Directory...", "Tells where the database is, when it has moved", &StartWindow::move},
        {"&Remove", "Takes the database off this list; its files stay", &StartWindow::forget},
        {"&Changes...", "What was changed in the database, and can be taken back", &StartWindow::showChanges},
        {"&Quit", "", &StartWindow::quit},
        {"&Inspect", "", &StartWindow::inspect},
    };
    for (const auto& row : rows) {
        buttons_.push_back(new QPushButton(QString::fromLatin1(row.text)));
        buttons_.back()->setToolTip(QString::fromLatin1(row.hint));
        connect(buttons_.back(), &QPushButton::clicked, this, row.action);
    }
}

void StartWindow::layOut() {
    auto* top = new QHBoxLayout;
    top->addWidget(new QLabel(QStringLiteral("Home directory:")));
    top->addWidget(homeField_, 1);
    top->addWidget(buttons_[homeButton]);
    auto* bottom = new QHBoxLayout;
    for (std::size_t i = addButton; i < buttons_.size(); ++i) {
        if (i == quitButton)
            bottom->addStretch(1);
        bottom->addWidget(buttons_[i]);
    }
    auto* all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addWidget(list_, 1);
    all->addWidget(hint_);
    all->addLayout(bottom);
}

void StartWindow::fillList(const std::string& selected) {
    list_->clear();
    for (const std::string& name : home_.empty() ? std::vector<std::string>() : databaseNames(home_)) {
        const std::string directory = directoryOfDatabase(home_, name);
        const bool there = QDir(shown(directory)).exists();
        auto* row = new QTreeWidgetItem(
            list_, {shown(name), (there ? QString() : QStringLiteral("Not there: ")) + shown(directory)});
        row->setToolTip(1, "<p style='white-space:pre'>" + shown(directory).toHtmlEscaped()); // no markup
        row->setData(0, nameRole, QByteArray::fromStdString(name));
        if (name == selected)
            list_->setCurrentItem(row);
    }
    if (list_->currentItem() == nullptr)
        list_->setCurrentItem(list_->topLevelItem(0));
    list_->resizeColumnToContents(0);
    list_->setColumnWidth(0, std::max(list_->columnWidth(0) + 20, 160));
    homeField_->setText(home_.empty() ? QStringLiteral("none chosen yet") : shown(home_));
    hint_->setText(
        home_.empty()
            ? QStringLiteral("Choose the home directory first. %1").arg(QString::fromLatin1(homeText))
            : QStringLiteral("There is no database in the home directory yet. Add one."));
    hint_->setVisible(list_->topLevelItemCount() == 0);
    updateButtons();
}

void StartWindow::updateButtons() {
    const bool selected = !list_->selectedItems().isEmpty();
    for (const Button needing : {moveButton, forgetButton, changesButton, inspectButton})
        buttons_[needing]->setEnabled(selected && !tool_);
    buttons_[addButton]->setEnabled(!home_.empty());
    buttons_[home_.empty() ? homeButton : selected ? inspectButton : addButton]->setDefault(true);
}

std::string StartWindow::selectedName() const {
    const QTreeWidgetItem* row = list_->currentItem();
    return row == nullptr ? std::string() : row->data(0, nameRole).toByteArray().toStdString();
}

QMessageBox::StandardButton StartWindow::ask(QMessageBox::Icon icon, const std::string& text,
                                             QMessageBox::StandardButtons buttons) {
    QMessageBox box(icon, windowTitle(), shown(text), buttons, this);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No); // where there is one
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

bool StartWindow::failed(const std::string& reason) {
    if (!reason.empty())
        ask(QMessageBox::Warning, reason, QMessageBox::Ok);
    return !reason.empty();
}

bool StartWindow::agreed(const std::string& question) {
    return ask(QMessageBox::Question, question, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

std::string StartWindow::askForDirectory(const char* title, const std::string& present) {
    return bytes(QFileDialog::getExistingDirectory(this, QString::fromLatin1(title), shown(present)));
}

std::string StartWindow::askForDatabase(const std::string& present, const char* allTheSame) {
    const std::string directory = askForDirectory("Directory of the database", present);
    const std::string doubt = directory.empty() ? "" : doubtOf(directory);
    return doubt.empty() || agreed(doubt + ". " + allTheSame) ? directory : std::string();
}

void StartWindow::chooseHomeDirectory() {
    const std::string directory =
        askForDirectory("Home directory, for the settings of all databases and the log", home_);
    if (directory.empty() || failed(chooseHome(directory)))
        return;
    home_ = currentHome();
    fillList(currentDatabaseName());
}

void StartWindow::add() {
    const std::string directory = askForDatabase("", "Add it all the same?");
    if (directory.empty())
        return;
    bool accepted = false;
    const QString name =
        QInputDialog::getText(this, QStringLiteral("Add a database"), QStringLiteral("Name of the database:"),
                              QLineEdit::Normal, QDir(shown(directory)).dirName(), &accepted);
    if (accepted && !failed(addDatabase(home_, bytes(name), directory)))
        fillList(bytes(name));
}

void StartWindow::move() {
    const std::string name = selectedName();
    const std::string directory = askForDatabase(directoryOfDatabase(home_, name), "Take it all the same?");
    if (!directory.empty() && !failed(moveDatabase(home_, name, directory)))
        fillList(name);
}

void StartWindow::forget() {
    const std::string name = selectedName();
    if (agreed("Take the database '" + name + "' off the list?\nIts directory '" +
               directoryOfDatabase(home_, name) + "' stays as it is; only '" + name +
               ".dbs' in the home directory is deleted.") &&
        !failed(forgetDatabase(home_, name)))
        fillList("");
}

void StartWindow::showChanges() {
    const std::string name = selectedName();
    ChangesWindow(this, name, directoryOfDatabase(home_, name)).exec();
}

void StartWindow::inspect() {
    const std::string name = selectedName();
    if (tool_ || name.empty() || failed(chooseDatabase(home_, name)))
        return;
    auto tool = std::make_unique<StartedProgram>();
    if (failed(startInspecting(*tool)))
        return;
    tool_ = std::move(tool);
    waiting_ = new QProgressDialog(QStringLiteral("Starting..."), QString(), 0, 100, this);
    auto* cancel = new QPushButton(QStringLiteral("Cancel"));
    cancel->setAutoDefault(false); // a key that is still held from "Inspect" cancels nothing
    waiting_->setCancelButton(cancel);
    waiting_->setWindowTitle(QStringLiteral("Reading %1").arg(shown(name)));
    waiting_->setWindowModality(Qt::WindowModal);
    waiting_->setAutoClose(false);
    waiting_->setAutoReset(false);
    waiting_->setMinimumDuration(500); // milliseconds
    connect(waiting_, &QProgressDialog::canceled, this, [this] { tool_->stop(); });
    connect(new QSocketNotifier(tool_->descriptor(), QSocketNotifier::Read, waiting_),
            &QSocketNotifier::activated, this, &StartWindow::hearTool);
    updateButtons();
}

// The tool goes on as soon as its window stands, or has ended.
void StartWindow::hearTool() {
    StartNews news = StartNews::failed;
    std::string text = endedEarly;
    const bool told = tool_->hear(news, text);
    const bool cancelled = waiting_->wasCanceled();
    if (told && news == StartNews::progress) {
        if (!cancelled)
            showProgress(text);
        return;
    }
    endWaiting();
    if (news == StartNews::stands)
        quit();
    else if (news == StartNews::failed && !cancelled)
        failed(text);
}

// A percentage, and in words what it is of.
void StartWindow::showProgress(const std::string& text) {
    waiting_->setLabelText(shown(text.substr(text.find(' ') + 1)));
    waiting_->setValue(std::atoi(text.c_str()));
}

void StartWindow::endWaiting() {
    waiting_->findChild<QSocketNotifier*>()->setEnabled(false);
    waiting_->hide();
    waiting_->deleteLater(); // what it does may have led here
    tool_.reset();
    updateButtons();
}

void StartWindow::quit() {
    close();
}
