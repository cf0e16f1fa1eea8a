#pragma once

#include <QString>
#include <QUndoCommand>

class StudioSession;

// A bone renamed in the studio. The model follows the hub's rename signal, so the mapping keeps the bone.
class RenameBoneCommand : public QUndoCommand
{
public:
    // `newName` as the scene will hold it (already sanitized).
    RenameBoneCommand(StudioSession& session, const QString& bone, const QString& newName);

    void undo() override;
    void redo() override;

private:
    StudioSession& mSession;
    QString mBone;
    QString mNewName;
};
