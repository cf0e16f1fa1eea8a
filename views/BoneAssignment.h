#pragma once

#include <QCoreApplication>
#include <QString>

#include <zelkin/CharacterizationExport.h>
#include <zelkin/MirrorMatcher.h>

class CharacterizationModel;
class IDCCHub;
class QWidget;

// Edits of the mapping that a view makes for the user, with the questions the user answers first. The figure and
// the name match view both go through here, so they always ask the same questions and refuse the same edits.
class ZELKIN_CHARACTERIZATION_EXPORT BoneAssignment
{
    Q_DECLARE_TR_FUNCTIONS(BoneAssignment)

public:
    enum Editability
    {
        Editable,
        NotCreated, // the host's placeholder character, or no characterization at all
        Locked
    };

    // Message boxes open over the view's window (see DialogParent). The hub may be null (no host: nothing to ask it).
    BoneAssignment(QWidget* view, IDCCHub* hub, CharacterizationModel* model);

    // The keyword pairs mirror mode uses; until set, only "Right"/"Left" names mirror.
    void SetMirrorMatcher(const MirrorMatcher& matcher) { mMirror = matcher; }
    const MirrorMatcher& GetMirrorMatcher() const { return mMirror; }

    Editability GetEditability() const;
    bool IsEditable() const { return GetEditability() == Editable; }
    // Explains a refusal in a warning box; true when the edit may go ahead.
    bool ConfirmEditable() const;

    // Asks before replacing the node's bone and before taking the bone away from another node; in mirror mode the
    // counterpart bone then goes to the opposite node with the same questions. The node becomes the edited part.
    // True when the node got the bone.
    bool Assign(int nodeId, const QString& bone);
    // A name the user typed: empty clears the node, a bone the scene does not have is refused with a warning.
    bool ApplyEnteredName(int nodeId, const QString& text);

    // The IDCCHub::InvertibleBone of a hinge node (3, 6, 10, 13); -1 for every other node.
    static int InvertibleBoneOf(int nodeId);
    bool ToggleInversion(int nodeId);

private:
    bool AssignOne(int nodeId, const QString& bone, bool mirrored);
    bool Ask(const QString& title, const QString& text, int yes, int no) const;

    QWidget* mView;
    IDCCHub* mHub;
    CharacterizationModel* mModel;
    MirrorMatcher mMirror;
};
