#pragma once

#include <memory>

#include <QObject>
#include <QStringList>

class Characterization;
class CharacterizationModel;
class QUndoStack;

// Turns each change of the current characterization's bone mapping into one undoable step, whatever made it (the
// figure, the name match tree, a template, a loaded file). Changes that belong to another step (a bone renamed or
// deleted) or to no step (a file opened) are made while the recorder is paused.
class AssignmentRecorder : public QObject
{
    Q_OBJECT

public:
    // Pauses the recorder for its lifetime; the mapping found afterwards is the new starting point.
    class Pause
    {
    public:
        explicit Pause(AssignmentRecorder* recorder);
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        AssignmentRecorder* mRecorder;
    };

    AssignmentRecorder(CharacterizationModel& model, QUndoStack& stack, QObject* parent = nullptr);

    CharacterizationModel& GetModel() const { return mModel; }
    bool IsPaused() const { return mPaused > 0; }
    // Takes the current mapping as the starting point.
    void Resync();

private slots:
    void OnModelChanged();

private:
    CharacterizationModel& mModel;
    QUndoStack& mStack;
    std::weak_ptr<Characterization> mTracked;
    QStringList mBones;
    int mPaused = 0;
};
