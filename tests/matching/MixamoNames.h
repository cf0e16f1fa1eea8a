#pragma once

#include <functional>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QStringList>
#include <QtEndian>

// The joint names of the corpus's Mixamo character, in scene order (parents first), read from its glTF JSON chunk.
inline QStringList MixamoNames()
{
    static const QStringList names = [] {
        QFile file(QStringLiteral(ZELKIN_CORPUS_DIR "/skeletons/mixamo_xbot.glb"));
        if (!file.open(QIODevice::ReadOnly))
            return QStringList();
        const QByteArray header = file.read(20);
        if (header.size() < 20)
            return QStringList();
        const quint32 jsonLength = qFromLittleEndian<quint32>(header.constData() + 12);
        const QJsonObject gltf = QJsonDocument::fromJson(file.read(jsonLength)).object();
        const QJsonArray nodes = gltf.value("nodes").toArray();
        QSet<int> joints;
        for (const QJsonValue joint : gltf.value("skins").toArray().at(0).toObject().value("joints").toArray())
            joints.insert(joint.toInt());
        QStringList ordered;
        std::function<void(int)> walk = [&](int index) {
            const QJsonObject node = nodes.at(index).toObject();
            if (joints.contains(index))
                ordered.append(node.value("name").toString());
            for (const QJsonValue child : node.value("children").toArray())
                walk(child.toInt());
        };
        for (const QJsonValue root : gltf.value("scenes").toArray().at(0).toObject().value("nodes").toArray())
            walk(root.toInt());
        return ordered;
    }();
    return names;
}
