#pragma once

#include <QDialog>
#include <QList>
#include <QPair>
#include <QString>

#include <zelkin/CharacterizationExport.h>

class ConfigDocument;
class QTableWidget;

// Edits the mirror keyword pairs ("mirror_list"/"mirror") of the configuration document. OK writes every row
// whose two cells are filled, in row order; Cancel changes nothing. Insert adds a row, Delete removes the
// current one while the table has the focus.
class ZELKIN_CHARACTERIZATION_EXPORT ConfigMirrorDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ConfigMirrorDialog(ConfigDocument& configuration, QWidget* parent = nullptr);

    QTableWidget* Table() const { return mTable; }
    // The rows with both cells filled, in row order.
    QList<QPair<QString, QString>> Pairs() const;

public slots:
    void AddRow();
    void RemoveRow();
    void accept() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void AppendRow(const QString& left, const QString& right);

    ConfigDocument& mConfiguration;
    QTableWidget* mTable;
};
