#include "ValidationReport.h"

#include <cstdio>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <zelkin/CharacterizationModel.h>
#include <zelkin/TemplateChooser.h>
#include <zelkin/ZELSolver.h>

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

int ValidationReport::ExitStatus() const
{
    return mState == Error ? CliError::ValidationFailed : 0;
}

QByteArray ValidationReport::ToJson() const
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
                        {"template", QJsonValue::Null},
                        {"score", QJsonValue::Null},
                        {"mappedNodes", int(mNodes.size())},
                        {"nodes", nodes}};
    if (mHasMapping)
    {
        if (!mMapping.templateName.isEmpty())
            report["template"] = mMapping.templateName;
        report["score"] = ChooserResult(mMapping).Score();
        report["candidateBones"] = mMapping.candidateBones;
    }
    if (!mMissingBones.isEmpty())
        report["missingBones"] = QJsonArray::fromStringList(mMissingBones);
    return QJsonDocument(report).toJson(QJsonDocument::Indented);
}

QString ValidationReport::ToText() const
{
    QStringList lines;
    if (mHasMapping)
        lines << ChooserResult(mMapping).Summary();
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
    if (!mMissingBones.isEmpty())
        lines << QStringLiteral("Not in the skeleton (stored geometry used): %1").arg(mMissingBones.join(", "));
    if (!mWrittenFiles.isEmpty())
        lines << QStringLiteral("Written: %1").arg(mWrittenFiles.join(", "));
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

void ValidationReport::Print(bool json) const
{
    std::fputs(json ? ToJson().constData() : ToText().toLocal8Bit().constData(), stdout);
}
