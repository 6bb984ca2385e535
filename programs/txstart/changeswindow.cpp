#include "changeswindow.h"

#include <QBoxLayout>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTreeWidget>
#include <algorithm>
#include <utility>

#include "changes/undodirectory.h"

namespace {

constexpr int pathRole = Qt::UserRole;

QTreeWidgetItem* rowOf(const UndoListEntry& entry) {
    auto* row = new QTreeWidgetItem({shown(timetext(entry.time)),
                                     shown(entry.damage.empty() ? entry.what() : entry.damage),
                                     shown(entry.state())});
    row->setData(0, pathRole, shown(entry.path));
    return row;
}

} // namespace

QString shown(const std::string& bytes) {
    return QFile::decodeName(bytes.c_str());
}

ChangesWindow::ChangesWindow(QWidget* parent, const std::string& database, std::string directory)
    : QDialog(parent), directory_(std::move(directory)), list_(new QTreeWidget), text_(new QPlainTextEdit),
      check_(new QProcess(this)) {
    setWindowTitle(QStringLiteral("Changes of %1").arg(shown(database)));
    list_->setHeaderLabels(
        {QStringLiteral("Time"), QStringLiteral("What was done"), QStringLiteral("Since then")});
    list_->setRootIsDecorated(false);
    list_->setAllColumnsShowFocus(true);
    text_->setReadOnly(true);
    text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text_->setPlaceholderText(QStringLiteral(
        "\"Plan\" shows here what \"Restore\" would do. Restore brings the database back to what "
        "it was before the selected changes; what has changed since is left."));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    planButton_ = buttons->addButton(QStringLiteral("&Plan"), QDialogButtonBox::ActionRole);
    restoreButton_ = buttons->addButton(QStringLiteral("&Restore..."), QDialogButtonBox::ActionRole);
    auto* all = new QVBoxLayout(this);
    all->addWidget(list_, 1);
    all->addWidget(text_, 2);
    all->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(planButton_, &QPushButton::clicked, this, [this] { run(QStringLiteral("--plan")); });
    connect(restoreButton_, &QPushButton::clicked, this, &ChangesWindow::restoreAll);
    connect(list_, &QTreeWidget::itemSelectionChanged, this, &ChangesWindow::updateButtons);
    connect(check_, &QProcess::finished, this, &ChangesWindow::ended);
    connect(check_, &QProcess::errorOccurred, this, &ChangesWindow::ended);
    check_->setProcessChannelMode(QProcess::MergedChannels);
    fillList();
    resize(90 * fontMetrics().averageCharWidth(), 30 * fontMetrics().height());
}

void ChangesWindow::fillList() {
    list_->clear();
    for (const UndoListEntry& entry : listundofiles(directory_))
        list_->insertTopLevelItem(0, rowOf(entry)); // the latest comes first
    list_->setCurrentItem(list_->topLevelItem(0));
    for (int column = 0; column < 2; ++column)
        list_->resizeColumnToContents(column);
    updateButtons();
}

// To close it would end txcheck in the middle of a restore.
void ChangesWindow::reject() {
    if (check_->state() == QProcess::NotRunning)
        QDialog::reject();
}

void ChangesWindow::updateButtons() {
    const bool ready = !list_->selectedItems().isEmpty() && check_->state() == QProcess::NotRunning;
    planButton_->setEnabled(ready);
    restoreButton_->setEnabled(ready);
}

void ChangesWindow::run(const QString& option) {
    const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/txcheck");
    QStringList words = {QStringLiteral("--restore"), list_->currentItem()->data(0, pathRole).toString(),
                         QStringLiteral("--no-progress")};
    if (!option.isEmpty())
        words.append(option);
    words.append({QStringLiteral("--"), shown(directory_)});
    text_->setPlainText(QStringLiteral("txcheck is at work. This window can be closed when it has ended"));
    check_->start(QFileInfo::exists(beside) ? beside : QStringLiteral("txcheck"), words);
    updateButtons();
}

bool ChangesWindow::agreed(const QString& question) {
    return QMessageBox::question(this, windowTitle(), question, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

void ChangesWindow::restoreAll() {
    const QString what = list_->currentItem()->text(1);
    if (agreed(QStringLiteral("Bring the database back to what it was before this: %1?\n"
                              "The restore can be taken back in turn.")
                   .arg(what)))
        run({});
}

// What has changed since is told first, and left only where that is wanted.
void ChangesWindow::ended() {
    const bool started = check_->error() != QProcess::FailedToStart;
    const QString text = QString::fromUtf8(check_->readAll());
    text_->setPlainText(started ? text : QStringLiteral("The program txcheck can't be started"));
    text_->moveCursor(QTextCursor::End);
    text_->find(QStringLiteral("changed on the disk"), QTextDocument::FindBackward);
    text_->centerCursor(); // the heading, and what follows it
    const bool planned = check_->arguments().contains(QStringLiteral("--plan"));
    const bool rest = !planned && text.contains(QStringLiteral("with --yes the rest is restored"));
    if (started && !planned && !rest)
        fillList();
    updateButtons();
    if (rest && agreed(QStringLiteral("Not all is as these changes left it, as the text tells. "
                                      "Restore the rest?")))
        run(QStringLiteral("--yes"));
}
