#pragma once

#include <functional>
#include <memory>

#include <QString>
#include <QStringList>
#include <QTreeWidget>

#include <zelkin/CharacterizationExport.h>

class QMenu;
class ResourceBridge;

// Lists the clip files ("*.kst") of the clip directories the user chose, one top row per directory. The
// directories are kept in the configuration, one "clip_path" entry with a "path" attribute each (section
// "clip_list").
class ZELKIN_CHARACTERIZATION_EXPORT ClipTreeWidget : public QTreeWidget
{
    Q_OBJECT

public:
    // Every row keeps its full path here.
    static constexpr int PathRole = Qt::UserRole;
    // Shows a file (or folder) in the desktop's file manager; true when something was started.
    using Revealer = std::function<bool(const QString& path)>;

    // The bridge must outlive the widget.
    explicit ClipTreeWidget(ResourceBridge& bridge, QWidget* parent = nullptr);
    ~ClipTreeWidget() override;

    QStringList GetDirectories() const { return mDirectories; }
    // Adds an existing directory (once) and scans it; false for a missing or already listed one.
    bool AddDirectoryPath(const QString& path);
    // The path of the current row; empty when there is none.
    QString GetCurrentClip() const;
    // Replaces the file manager call (tests, or a host with its own browser).
    void SetRevealer(Revealer revealer) { mRevealer = std::move(revealer); }
    // "Refresh", "Add Clip Directory...", "Remove", "Explore...", enabled as the current row allows.
    std::unique_ptr<QMenu> CreateContextMenu();
    // What an empty browser shows where its rows would be: how to add a directory.
    static QString GetEmptyText();

    // On Windows the file manager with the file selected ("explorer" with ExplorerArgument); elsewhere the
    // desktop's file manager through its D-Bus interface, else the folder through xdg-open.
    static bool RevealInFileManager(const QString& path);
    // "/select,%1" with every "/" of the path turned into a backslash.
    static QString ExplorerArgument(const QString& path);

signals:
    // A clip was double-clicked or chosen with Enter.
    void ClipActivated(const QString& path);

public slots:
    void Refresh();
    void AddDirectory();
    // Takes the current row's directory out of the list (its files stay); on a clip row, only once the user agrees.
    void RemoveDirectory();
    void ShowExplorer();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void LoadDirectories();
    bool StoreDirectories();
    void AddDirectoryRow(const QString& directory);
    // The directory that the current row is, or is in.
    int CurrentDirectoryIndex() const;

    ResourceBridge& mBridge;
    QStringList mDirectories;
    Revealer mRevealer;
};
