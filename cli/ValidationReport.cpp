#include "ValidationReport.h"

#include <cmath>
#include <cstdio>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <zelkin/CharacterizationModel.h>
#include <zelkin/TemplateChooser.h>
#include <zelkin/ZELSolver.h>

#include "Batch.h"
#include "CliError.h"

namespace
{
const char* const StateNames[] = {"not validated", "valid", "warning", "error"};

QString StateName(int state)
{
    return QString::fromLatin1(state >= 0 && state <= Error ? StateNames[state] : "unknown");
}

QString NodeName(int nodeId)
{
    return QString::fromLatin1(ZELGetNodeNameFromId(nodeId));
}

TemplateChooser::Result ChooserResult(const ValidationReport::Mapping& mapping)
{
    TemplateChooser::Result result;
    result.templateName = mapping.templateName;
    result.mappedNodes = mapping.mappedNodes;
    result.candidateBones = mapping.candidateBones;
    return result;
}

// "+Y" for an axis, else the vector's three numbers.
QString Direction(const SkeletonRecognizer::Vector& v)
{
    static const char* const axes[] = {"X", "Y", "Z"};
    for (int axis = 0; axis < 3; ++axis)
        if (std::abs(std::abs(v[size_t(axis)]) - 1.0) < 1e-6)
            return QStringLiteral("%1%2").arg(v[size_t(axis)] < 0 ? '-' : '+').arg(QLatin1String(axes[axis]));
    return QStringLiteral("(%1, %2, %3)").arg(v[0], 0, 'f', 2).arg(v[1], 0, 'f', 2).arg(v[2], 0, 'f', 2);
}

QJsonArray Vector(const SkeletonRecognizer::Vector& v)
{
    return QJsonArray {v[0], v[1], v[2]};
}

int Percent(double share)
{
    return int(std::lround(share * 100.0));
}

// Continuation lines of a multi-line message line up under its first line.
QString Indented(const QString& text, int width)
{
    QString indented = text;
    return indented.replace(QLatin1Char('\n'), QLatin1Char('\n') + QString(width, QLatin1Char(' ')));
}
} // namespace

ValidationReport::ValidationReport(const CharacterizationModel& model)
    : mState(model.GetValidationState())
    , mMessage(QString::fromStdString(model.GetValidationMessage()))
{
    const auto current = model.GetCurrentCharacterization();
    for (int nodeId = 0; current && nodeId < ZELNodeCount; ++nodeId)
    {
        if (current->IsAssigned(nodeId))
            mNodes.push_back({nodeId, current->GetBone(nodeId), model.GetNodeState(nodeId),
                              QString::fromStdString(model.GetNodeMessage(nodeId))});
    }
}

void ValidationReport::SetMapping(const Mapping& mapping)
{
    mHasMapping = true;
    mMapping = mapping;
}

void ValidationReport::SetRecognition(const Recognition& recognition)
{
    mHasRecognition = true;
    mRecognition = recognition;
}

QString ValidationReport::RecognitionSummary() const
{
    const SkeletonRecognizer::Character& character = mRecognition.character;
    return QStringLiteral("Automatic characterization: character %1 of %2, \"%3\" (hips \"%4\"), %5, up %6, facing "
                          "%7: %8 nodes, confidence %9%.")
        .arg(mRecognition.index)
        .arg(mRecognition.count)
        .arg(mRecognition.root, mRecognition.hips, SkeletonRecognizer::PoseKindName(character.pose),
             Direction(character.frame.up), Direction(character.frame.facing))
        .arg(character.nodes.size())
        .arg(Percent(character.confidence));
}

// Nodes the recognizer was least sure of, for people to look at first.
QStringList ValidationReport::UncertainNodes() const
{
    QStringList uncertain;
    for (const SkeletonRecognizer::NodeMatch& match : mRecognition.character.nodes)
        if (match.confidence < 0.6)
            uncertain << QStringLiteral("  %1 (%2): %3%")
                             .arg(NodeName(match.nodeId), mRecognition.boneNames.value(match.bone))
                             .arg(Percent(match.confidence));
    return uncertain;
}

void ValidationReport::AddRecognition(QJsonObject& report, QJsonArray& nodes) const
{
    const SkeletonRecognizer::Character& character = mRecognition.character;
    report["method"] = QStringLiteral("recognition");
    report["character"] = QJsonObject {{"index", mRecognition.index},
                                       {"count", mRecognition.count},
                                       {"root", mRecognition.root},
                                       {"hips", mRecognition.hips},
                                       {"pose", SkeletonRecognizer::PoseKindName(character.pose)},
                                       {"up", Vector(character.frame.up)},
                                       {"facing", Vector(character.frame.facing)},
                                       {"left", Vector(character.frame.left)},
                                       {"namesMirrored", character.frame.namesMirrored},
                                       {"confidence", character.confidence}};
    for (int i = 0; i < nodes.size(); ++i)
    {
        QJsonObject node = nodes[i].toObject();
        for (const SkeletonRecognizer::NodeMatch& match : character.nodes)
        {
            if (match.nodeId != node["id"].toInt() || mRecognition.boneNames.value(match.bone) != node["bone"].toString())
                continue;
            node["confidence"] = match.confidence;
            node["evidence"] = QJsonObject {{"hierarchy", match.evidence.hierarchy},
                                            {"geometry", match.evidence.geometry},
                                            {"name", match.evidence.name}};
        }
        nodes[i] = node;
    }
    QJsonArray unmapped;
    for (const SkeletonRecognizer::UnmappedBone& bone : character.unmapped)
        unmapped.append(QJsonObject {{"bone", mRecognition.boneNames.value(bone.bone)},
                                     {"reason", SkeletonRecognizer::LeftOutName(bone.reason)}});
    report["unmapped"] = unmapped;
}

void ValidationReport::SetTPose(const TPoseBuilder::Result& result, const QStringList& boneNames)
{
    mHasTPose = true;
    mTPose = result;
    mTPoseBones = boneNames;
}

QJsonObject ValidationReport::TPoseJson() const
{
    if (!mTPose.IsPosed())
        return QJsonObject {{"error", mTPose.error}};
    QJsonArray turned;
    for (const TPoseBuilder::Turn& turn : mTPose.turns)
        turned.append(QJsonObject {{"bone", mTPoseBones.value(turn.bone)},
                                   {"node", turn.nodeId >= 0 ? QJsonValue(NodeName(turn.nodeId)) : QJsonValue()},
                                   {"degrees", turn.degrees}});
    return QJsonObject {{"up", Vector(mTPose.up)},
                        {"facing", Vector(mTPose.facing)},
                        {"left", Vector(mTPose.left)},
                        {"frameDegrees", mTPose.frameDegrees},
                        {"turned", turned}};
}

QStringList ValidationReport::TPoseLines() const
{
    if (!mTPose.IsPosed())
        return {QStringLiteral("T-pose: not set: %1").arg(mTPose.error)};
    QString stood = QStringLiteral("T-pose: the character stood up %1, facing %2")
                        .arg(Direction(mTPose.up), Direction(mTPose.facing));
    if (mTPose.frameDegrees >= TPoseBuilder::NoTurnDegrees)
        stood += QStringLiteral(", and was turned %1 degrees to stand up +Y, facing +Z")
                     .arg(mTPose.frameDegrees, 0, 'f', 1);
    if (!mTPose.Changed())
        return {stood + QStringLiteral("; it was in a T-pose already: no bone turned.")};
    QStringList lines {stood + QStringLiteral("; %1 bones turned:").arg(mTPose.turns.size())};
    for (const TPoseBuilder::Turn& turn : mTPose.turns)
    {
        const QString node = turn.nodeId >= 0 ? QStringLiteral(" (%1)").arg(NodeName(turn.nodeId)) : QString();
        lines << QStringLiteral("  %1%2: %3 degrees")
                     .arg(mTPoseBones.value(turn.bone), node)
                     .arg(turn.degrees, 0, 'f', 1);
    }
    return lines;
}

int ValidationReport::ExitStatus() const
{
    return mState == Error ? CliError::ValidationFailed : 0;
}

QJsonObject ValidationReport::ToJsonObject() const
{
    QJsonArray nodes;
    for (const Node& node : mNodes)
    {
        const QJsonArray messages = node.message.isEmpty() ? QJsonArray() : QJsonArray {node.message};
        nodes.append(QJsonObject {{"id", node.id},
                                  {"name", NodeName(node.id)},
                                  {"bone", node.bone},
                                  {"state", node.state},
                                  {"messages", messages}});
    }
    QJsonObject report {{"state", int(mState)},
                        {"message", mMessage},
                        {"method", mHasMapping ? QJsonValue(QStringLiteral("template")) : QJsonValue()},
                        {"template", QJsonValue::Null},
                        {"score", QJsonValue::Null},
                        {"mappedNodes", int(mNodes.size())}};
    if (mHasMapping)
    {
        if (!mMapping.templateName.isEmpty())
            report["template"] = mMapping.templateName;
        report["score"] = ChooserResult(mMapping).Score();
        if (!mMapping.note.isEmpty())
            report["note"] = mMapping.note;
        report["candidateBones"] = mMapping.candidateBones;
    }
    if (mHasRecognition)
        AddRecognition(report, nodes);
    if (mHasTPose)
        report["tPose"] = TPoseJson();
    report["nodes"] = nodes;
    if (!mMissingBones.isEmpty())
        report["missingBones"] = QJsonArray::fromStringList(mMissingBones);
    return report;
}

QString ValidationReport::ToText() const
{
    QStringList lines;
    if (mHasRecognition)
        lines << RecognitionSummary();
    else if (mHasMapping)
        lines << (mMapping.note.isEmpty() ? QString() : mMapping.note + QLatin1Char(' ')) + ChooserResult(mMapping).Summary();
    if (mHasRecognition && mRecognition.character.frame.namesMirrored)
        lines << QStringLiteral("Note: most bones named for a side stand on the other side; the geometry decided.");
    if (mHasTPose)
        lines << TPoseLines();
    lines << QStringLiteral("State: %1 (%2)").arg(int(mState)).arg(StateName(mState));
    if (!mMessage.isEmpty())
        lines << QStringLiteral("Message: %1").arg(Indented(mMessage, 9));
    lines << QStringLiteral("Mapped nodes: %1").arg(mNodes.size());
    QStringList findings;
    for (const Node& node : mNodes)
    {
        if (node.state < Warning)
            continue;
        const QString head = QStringLiteral("  %1 %2 (%3)").arg(StateName(node.state), -8).arg(NodeName(node.id), node.bone);
        findings << (node.message.isEmpty() ? head : QStringLiteral("%1: %2").arg(head, node.message));
    }
    lines << (findings.isEmpty() ? QStringLiteral("Findings: none") : QStringLiteral("Findings:"));
    lines << findings;
    const QStringList uncertain = mHasRecognition ? UncertainNodes() : QStringList();
    if (!uncertain.isEmpty())
        lines << QStringLiteral("Least certain:") << uncertain;
    if (!mMissingBones.isEmpty())
        lines << QStringLiteral("Not in the skeleton (stored geometry used): %1").arg(mMissingBones.join(", "));
    if (!mWrittenFiles.isEmpty())
        lines << QStringLiteral("Written: %1").arg(mWrittenFiles.join(", "));
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

void ValidationReport::Print(Form form) const
{
    QByteArray out;
    switch (form)
    {
    case Form::Text: out = ToText().toLocal8Bit(); break;
    case Form::Json: out = QJsonDocument(ToJsonObject()).toJson(QJsonDocument::Indented); break;
    case Form::JsonLine: out = QJsonDocument(ToJsonObject()).toJson(QJsonDocument::Compact) + '\n'; break;
    case Form::Worker: out = Batch::WorkerLine(ToJsonObject(), ToText()); break;
    }
    std::fwrite(out.constData(), 1, size_t(out.size()), stdout);
}
