#pragma once

#include <QDialog>

#include <zelkin/CharacterizationExport.h>

class CharacterizationModel;
class IDCCHub;
class QCompleter;
class QLineEdit;

// The small dialog that asks for a bone name while offering the scene's bones as the user types.
class ZELKIN_CHARACTERIZATION_EXPORT CompleterWidget : public QDialog
{
    Q_OBJECT

public:
    // The completion role holds the bare bone name; the shown text of a bone that another node holds says which.
    static constexpr int BoneRole = Qt::UserRole;

    // Starts with the bone the node holds now.
    CompleterWidget(QWidget* parent, IDCCHub* hub, CharacterizationModel* model, int nodeId);

    // The name as typed, without surrounding blanks.
    QString GetText() const;
    QLineEdit* GetLineEdit() const { return mLine; }
    QCompleter* GetCompleter() const;

    // Completion over the host's scene bones for one node: case-insensitive, anywhere in the name; bones that
    // other nodes hold are offered too, greyed and marked with the node's name.
    static QCompleter* CreateBoneCompleter(IDCCHub* hub, const CharacterizationModel* model, int nodeId,
                                           QObject* parent);

private:
    QLineEdit* mLine;
};
