#include <zelkin/ConfigMirrorDialog.h>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTableWidget>
#include <QVBoxLayout>

#include <zelkin/ConfigDocument.h>
#include <zelkin/MirrorMatcher.h>

namespace
{
QString CellText(const QTableWidget* table, int row, int column)
{
    const QTableWidgetItem* item = table->item(row, column);
    return item ? item->text() : QString();
}
} // namespace

ConfigMirrorDialog::ConfigMirrorDialog(ConfigDocument& configuration, QWidget* parent)
    : QDialog(parent), mConfiguration(configuration), mTable(new QTableWidget(0, 2, this))
{
    setWindowTitle(tr("Mirror Configuration"));
    setModal(true);

    auto* explanation =
        new QLabel(tr("Each row specifies a pair of keywords used to match\nbone names on the opposite side of the skeleton."), this);

    mTable->setHorizontalHeaderLabels({tr("Left keyword"), tr("Right keyword")});
    mTable->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    mTable->verticalHeader()->setVisible(false);
    mTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    mTable->setSelectionMode(QAbstractItemView::SingleSelection);
    mTable->setTabKeyNavigation(false);
    explanation->setBuddy(mTable);

    MirrorMatcher pairs;
    pairs.Load(configuration);
    for (const MirrorMatcher::Pair& pair : pairs.Pairs())
        AppendRow(pair.first, pair.second);

    auto* addButton = new QPushButton(tr("&Add Row"), this);
    auto* removeButton = new QPushButton(tr("&Remove Row"), this);
    addButton->setAutoDefault(false);
    removeButton->setAutoDefault(false);
    connect(addButton, &QPushButton::clicked, this, &ConfigMirrorDialog::AddRow);
    connect(removeButton, &QPushButton::clicked, this, &ConfigMirrorDialog::RemoveRow);

    auto* insertShortcut = new QShortcut(QKeySequence(Qt::Key_Insert), mTable, nullptr, nullptr, Qt::WidgetShortcut);
    auto* deleteShortcut = new QShortcut(QKeySequence::Delete, mTable, nullptr, nullptr, Qt::WidgetShortcut);
    connect(insertShortcut, &QShortcut::activated, this, &ConfigMirrorDialog::AddRow);
    connect(deleteShortcut, &QShortcut::activated, this, &ConfigMirrorDialog::RemoveRow);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &ConfigMirrorDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ConfigMirrorDialog::reject);

    auto* rowButtons = new QHBoxLayout;
    rowButtons->addWidget(addButton);
    rowButtons->addWidget(removeButton);
    rowButtons->addStretch();

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(explanation);
    layout->addWidget(mTable);
    layout->addLayout(rowButtons);
    layout->addWidget(buttons);

    setTabOrder(mTable, addButton);
    setTabOrder(addButton, removeButton);
    setTabOrder(removeButton, buttons);
    mTable->setFocus();
}

void ConfigMirrorDialog::AppendRow(const QString& left, const QString& right)
{
    const int row = mTable->rowCount();
    mTable->insertRow(row);
    mTable->setItem(row, 0, new QTableWidgetItem(left));
    mTable->setItem(row, 1, new QTableWidgetItem(right));
}

void ConfigMirrorDialog::AddRow()
{
    AppendRow(QString(), QString());
    const int row = mTable->rowCount() - 1;
    mTable->setCurrentCell(row, 0);
    mTable->setFocus();
    mTable->editItem(mTable->item(row, 0));
}

void ConfigMirrorDialog::RemoveRow()
{
    const int row = mTable->currentRow();
    if (row < 0)
        return;
    mTable->removeRow(row);
    if (mTable->rowCount() > 0)
        mTable->setCurrentCell(std::min(row, mTable->rowCount() - 1), 0);
}

QList<QPair<QString, QString>> ConfigMirrorDialog::Pairs() const
{
    QList<QPair<QString, QString>> pairs;
    for (int row = 0; row < mTable->rowCount(); ++row)
    {
        const QString left = CellText(mTable, row, 0);
        const QString right = CellText(mTable, row, 1);
        if (!left.isEmpty() && !right.isEmpty())
            pairs.append({left, right});
    }
    return pairs;
}

void ConfigMirrorDialog::keyPressEvent(QKeyEvent* event)
{
    // Return that finishes a cell edit reaches the dialog before the edit is stored: it must not press OK.
    const QWidget* focus = focusWidget();
    const bool editing = focus && focus != mTable && mTable->isAncestorOf(focus);
    if (editing && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
    {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ConfigMirrorDialog::accept()
{
    MirrorMatcher(Pairs()).Save(mConfiguration);
    QDialog::accept();
}
