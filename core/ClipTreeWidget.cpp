#include <zelkin/ClipTreeWidget.h>

#include <QContextMenuEvent>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QProcess>
#include <QUrl>

#include <zelkin/ConfigDocument.h>
#include <zelkin/ResourceBridge.h>
#include <zelkin/UserConfiguration.h>

namespace
{
const QString ClipSection = QStringLiteral("clip_list");
const QString ClipKey = QStringLiteral("clip_path");
const QString PathAttribute = QStringLiteral("path");
const QString ClipFilter = QStringLiteral("*.kst");

QString Normalised(const QString& path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

bool ShowItemsOverDBus(const QString& path)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    const QString service = QStringLiteral("org.freedesktop.FileManager1");
    if (!bus.isConnected() || bus.interface() == nullptr || !bus.interface()->isServiceRegistered(service).value())
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(service, QStringLiteral("/org/freedesktop/FileManager1"),
                                                       service, QStringLiteral("ShowItems"));
    call << QStringList {QUrl::fromLocalFile(path).toString()} << QString();
    return bus.call(call, QDBus::Block, 3000).type() == QDBusMessage::ReplyMessage;
}
} // namespace

ClipTreeWidget::ClipTreeWidget(ResourceBridge& bridge, QWidget* parent)
    : QTreeWidget(parent)
    , mBridge(bridge)
    , mRevealer(&ClipTreeWidget::RevealInFileManager)
{
    setColumnCount(1);
    setHeaderLabels({tr("Clips")});
    header()->setStretchLastSection(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setContextMenuPolicy(Qt::DefaultContextMenu);
    connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
        if (item != nullptr && item->parent() != nullptr)
            emit ClipActivated(item->data(0, PathRole).toString());
    });
    LoadDirectories();
    Refresh();
}

ClipTreeWidget::~ClipTreeWidget() = default;

void ClipTreeWidget::LoadDirectories()
{
    mDirectories.clear();
    const ConfigDocument& document = mBridge.GetConfiguration().Document();
    // Our earlier versions kept the directories as items of one entry; they are taken up too.
    for (const QStringList& row : document.ReadEntries(ClipSection, ClipKey, {PathAttribute}) +
                                      document.ReadTable(ClipSection, ClipKey, {PathAttribute}))
    {
        if (!row.front().isEmpty() && !mDirectories.contains(row.front()))
            mDirectories.append(row.front());
    }
}

bool ClipTreeWidget::StoreDirectories()
{
    QList<QStringList> rows;
    for (const QString& directory : mDirectories)
        rows.append({directory});
    mBridge.GetConfiguration().Document().WriteEntries(ClipSection, ClipKey, {PathAttribute}, rows);
    QString error;
    if (mBridge.SaveConfiguration(&error))
        return true;
    QMessageBox::warning(this, tr("Configuration Error"),
                         tr("The clip directories could not be saved; they are listed until the panel closes.\n%1")
                             .arg(error));
    return false;
}

void ClipTreeWidget::Refresh()
{
    const QString current = GetCurrentClip();
    clear();
    for (const QString& directory : mDirectories)
        AddDirectoryRow(directory);
    // Keep the user's place across a rescan.
    const QList<QTreeWidgetItem*> rows = findItems(QStringLiteral("*"), Qt::MatchWildcard | Qt::MatchRecursive);
    for (QTreeWidgetItem* row : rows)
    {
        if (!current.isEmpty() && row->data(0, PathRole).toString() == current)
            setCurrentItem(row);
    }
}

void ClipTreeWidget::AddDirectoryRow(const QString& directory)
{
    static const QFileIconProvider icons;
    auto* top = new QTreeWidgetItem(this, {QDir::toNativeSeparators(directory)});
    top->setData(0, PathRole, directory);
    top->setIcon(0, icons.icon(QFileIconProvider::Folder));
    const QDir folder(directory);
    if (!folder.exists())
    {
        top->setToolTip(0, tr("This directory does not exist (any more)."));
        top->setForeground(0, palette().brush(QPalette::Disabled, QPalette::Text));
        return;
    }
    top->setToolTip(0, QDir::toNativeSeparators(directory));
    const QFileInfoList clips = folder.entryInfoList({ClipFilter}, QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo& clip : clips)
    {
        auto* row = new QTreeWidgetItem(top, {clip.fileName()});
        row->setData(0, PathRole, clip.absoluteFilePath());
        row->setToolTip(0, QDir::toNativeSeparators(clip.absoluteFilePath()));
        row->setIcon(0, icons.icon(QFileIconProvider::File));
    }
    top->setExpanded(true);
}

bool ClipTreeWidget::AddDirectoryPath(const QString& path)
{
    if (path.isEmpty() || !QFileInfo(path).isDir())
        return false;
    const QString directory = Normalised(path);
    if (mDirectories.contains(directory))
        return false;
    mDirectories.append(directory);
    StoreDirectories();
    AddDirectoryRow(directory);
    return true;
}

void ClipTreeWidget::AddDirectory()
{
    QFileDialog dialog(this, tr("Add Clip Directory"), mBridge.GetDataDirectory());
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    if (dialog.exec() != QDialog::Accepted)
        return;
    for (const QString& path : dialog.selectedFiles())
        AddDirectoryPath(path);
}

int ClipTreeWidget::CurrentDirectoryIndex() const
{
    const QTreeWidgetItem* row = currentItem();
    if (row == nullptr)
        return -1;
    while (row->parent() != nullptr)
        row = row->parent();
    return indexOfTopLevelItem(const_cast<QTreeWidgetItem*>(row));
}

void ClipTreeWidget::RemoveDirectory()
{
    const int index = CurrentDirectoryIndex();
    if (index < 0 || index >= mDirectories.size())
        return;
    const QTreeWidgetItem* row = currentItem();
    if (row->parent() != nullptr &&
        QMessageBox::question(this, tr("Remove Clip Directory"),
                              tr("%1 is a clip of the directory %2.\nRemove the whole directory from the list? Its "
                                 "files stay where they are.")
                                  .arg(row->text(0), QDir::toNativeSeparators(mDirectories[index])),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    mDirectories.removeAt(index);
    StoreDirectories();
    delete takeTopLevelItem(index);
}

QString ClipTreeWidget::GetCurrentClip() const
{
    const QTreeWidgetItem* row = currentItem();
    return row != nullptr ? row->data(0, PathRole).toString() : QString();
}

void ClipTreeWidget::ShowExplorer()
{
    const QString path = GetCurrentClip();
    if (path.isEmpty() || !mRevealer)
        return;
    if (!mRevealer(path))
        QMessageBox::warning(this, tr("Explore"),
                             tr("No file manager could be started to show %1.").arg(QDir::toNativeSeparators(path)));
}

QString ClipTreeWidget::ExplorerArgument(const QString& path)
{
    QString native = path;
    native.replace(QLatin1Char('/'), QLatin1Char('\\'));
    return QStringLiteral("/select,%1").arg(native);
}

bool ClipTreeWidget::RevealInFileManager(const QString& path)
{
#ifdef Q_OS_WIN
    // The argument goes to the file manager as it is: Qt's quoting would break its "/select," syntax.
    QProcess explorer;
    explorer.setProgram(QStringLiteral("explorer"));
    explorer.setNativeArguments(ExplorerArgument(path));
    return explorer.startDetached();
#else
    if (ShowItemsOverDBus(path))
        return true;
    const QFileInfo info(path);
    const QString folder = info.isDir() ? info.absoluteFilePath() : info.absolutePath();
    return QProcess::startDetached(QStringLiteral("xdg-open"), {folder});
#endif
}

std::unique_ptr<QMenu> ClipTreeWidget::CreateContextMenu()
{
    auto menu = std::make_unique<QMenu>(this);
    const bool onRow = currentItem() != nullptr;
    menu->addAction(tr("Refresh"), this, &ClipTreeWidget::Refresh)->setShortcut(QKeySequence::Refresh);
    menu->addAction(tr("Add Clip Directory..."), this, &ClipTreeWidget::AddDirectory);
    QAction* remove = menu->addAction(tr("Remove"), this, &ClipTreeWidget::RemoveDirectory);
    remove->setShortcut(QKeySequence::Delete);
    remove->setEnabled(onRow);
    menu->addAction(tr("Explore..."), this, &ClipTreeWidget::ShowExplorer)->setEnabled(onRow);
    return menu;
}

QString ClipTreeWidget::GetEmptyText()
{
    return tr("No clip directories yet.\nRight-click here and choose \"Add Clip Directory...\" to list the clips "
              "of a directory.");
}

void ClipTreeWidget::paintEvent(QPaintEvent* event)
{
    QTreeWidget::paintEvent(event);
    if (topLevelItemCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Text));
    const int margin = fontMetrics().height();
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, GetEmptyText());
}

void ClipTreeWidget::contextMenuEvent(QContextMenuEvent* event)
{
    if (QTreeWidgetItem* row = itemAt(viewport()->mapFrom(this, event->pos())))
        setCurrentItem(row);
    CreateContextMenu()->exec(event->globalPos());
}

void ClipTreeWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Refresh))
        Refresh();
    else if (event->matches(QKeySequence::Delete) && currentItem() != nullptr && currentItem()->parent() == nullptr)
        RemoveDirectory();
    else
        QTreeWidget::keyPressEvent(event);
}
