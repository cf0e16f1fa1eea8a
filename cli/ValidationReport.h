#pragma once

#include <vector>

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <zelkin/SkeletonRecognizer.h>
#include <zelkin/TPoseBuilder.h>
#include <zelkin/ValidationLog.h>

class CharacterizationModel;
class QJsonArray;

// What validating the model's current characterization found, printed for people or as one JSON document:
// the overall state and message, how the skeleton was mapped, and every assigned node with its bone and findings.
class ValidationReport
{
public:
    // The template that mapped the skeleton; a file that is only validated has none.
    struct Mapping
    {
        QString templateName; // empty when no template mapped a bone
        int mappedNodes = 0;
        int candidateBones = 0; // the skeleton's bones that could be nodes
        QString note;           // why templates mapped it, when automatic characterization found nothing
    };

    // The character automatic characterization found and mapped.
    struct Recognition
    {
        int index = 0; // 1-based, of `count` characters in the skeleton
        int count = 0;
        QString root;
        QString hips;
        SkeletonRecognizer::Character character;
        QStringList boneNames; // the whole skeleton's, by bone index
    };

    explicit ValidationReport(const CharacterizationModel& model);

    void SetMapping(const Mapping& mapping);
    void SetRecognition(const Recognition& recognition);
    // Mapped bones that the skeleton supplying the geometry lacks; they kept the geometry stored with them.
    void SetMissingBones(const QStringList& bones) { mMissingBones = bones; }
    // Shown to people after the findings.
    void SetWrittenFiles(const QStringList& paths) { mWrittenFiles = paths; }
    // What --t-pose did before validation: the bones it turned (names by bone index), or why it could not.
    void SetTPose(const TPoseBuilder::Result& result, const QStringList& boneNames);

    ValidationState State() const { return mState; }
    // 2 when validation ends in an error, else 0.
    int ExitStatus() const;
    QJsonObject ToJsonObject() const;
    QString ToText() const;
    enum class Form
    {
        Text,     // for people
        Json,     // one indented document
        JsonLine, // one document on one line, as one of several
        Worker    // a line for the batch that runs this file (Batch::WorkerLine)
    };
    // On stdout.
    void Print(Form form) const;

private:
    QString RecognitionSummary() const;
    QStringList UncertainNodes() const;
    void AddRecognition(QJsonObject& report, QJsonArray& nodes) const;
    QJsonObject TPoseJson() const;
    QStringList TPoseLines() const;

    struct Node
    {
        int id;
        QString bone;
        int state;
        QString message;
    };

    ValidationState mState;
    QString mMessage;
    std::vector<Node> mNodes;
    bool mHasMapping = false;
    Mapping mMapping;
    bool mHasRecognition = false;
    Recognition mRecognition;
    QStringList mMissingBones;
    QStringList mWrittenFiles;
    bool mHasTPose = false;
    TPoseBuilder::Result mTPose;
    QStringList mTPoseBones;
};
