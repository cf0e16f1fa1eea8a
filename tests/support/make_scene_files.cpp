// Writes skeleton files in a dozen formats from one BVH skeleton, for the scene fuzzers' seeds and for the tests of
// damaged files: the file itself, and the skeleton as Assimp exports it: glTF (binary, and text with its buffer
// embedded), FBX (binary and ASCII), Collada, DirectX, Assimp's binary dump, each whole with its motion; and a few
// joints skinning a small mesh, in those and in the formats that keep meshes only (OBJ, STL, PLY, 3DS), so that
// both ways the scene library finds bones, and files without any, are covered. One folder per format.
// Usage: make_scene_files <skeleton.bvh> <output directory>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <assimp/Exporter.hpp>
#include <assimp/config.h>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include "BinaryFbx.h"
#include "SkinnedMesh.h"

namespace
{
// Deep enough for hips, spine and legs: a seed small enough to fuzz quickly.
constexpr int SmallDepth = 4;

struct Format
{
    const char* id; // the Assimp exporter
    const char* directory;
    const char* extension;
    // Also the whole skeleton. In FBX it is some 300 KiB, which slows the fuzzer down several times over (the small
    // skinned one has the same kinds of records), and the formats of meshes alone have nothing to write of it.
    bool whole;
};

const Format Formats[] = {{"glb2", "gltf", "glb", true},      {"gltf2", "gltf", "gltf", true},
                          {"fbx", "fbx", "fbx", false},       {"fbxa", "fbx", "fbx", false},
                          {"collada", "collada", "dae", true}, {"x", "x", "x", true},
                          {"assbin", "assbin", "assbin", true}, {"obj", "obj", "obj", false},
                          {"stlb", "stl", "stl", false},      {"ply", "ply", "ply", false},
                          {"3ds", "3ds", "3ds", false}};

bool WriteFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

void Prune(aiNode& node, int depth)
{
    if (depth > 1)
    {
        for (unsigned i = 0; i < node.mNumChildren; ++i)
            Prune(*node.mChildren[i], depth - 1);
        return;
    }
    for (unsigned i = 0; i < node.mNumChildren; ++i)
        delete node.mChildren[i];
    delete[] node.mChildren;
    node.mChildren = nullptr;
    node.mNumChildren = 0;
}

void DropAnimations(aiScene& scene)
{
    for (unsigned i = 0; i < scene.mNumAnimations; ++i)
        delete scene.mAnimations[i];
    delete[] scene.mAnimations;
    scene.mAnimations = nullptr;
    scene.mNumAnimations = 0;
}

using Joints = std::vector<std::pair<const aiNode*, aiMatrix4x4>>;

void CollectJoints(const aiNode& node, const aiMatrix4x4& parent, Joints& out)
{
    const aiMatrix4x4 global = parent * node.mTransformation;
    out.emplace_back(&node, global);
    for (unsigned i = 0; i < node.mNumChildren; ++i)
        CollectJoints(*node.mChildren[i], global, out);
}

// One vertex at each joint of the skeleton, weighted fully to it.
aiMesh* SkeletonMesh(const aiNode& root)
{
    Joints joints;
    CollectJoints(root, aiMatrix4x4(), joints);
    std::vector<MeshJoint> named;
    for (const auto& [node, global] : joints)
        named.emplace_back(node->mName.C_Str(), global);
    return SkinnedMesh("Body", named);
}

// The skeleton and a mesh node side by side under a new root.
void AddSkinnedMesh(aiScene& scene)
{
    aiNode* skeleton = scene.mRootNode;
    auto* root = new aiNode("Scene");
    auto* body = new aiNode("Body");
    body->mNumMeshes = 1;
    body->mMeshes = new unsigned[1] {0};
    root->addChildren(1, &skeleton);
    root->addChildren(1, &body);
    scene.mRootNode = root;
    scene.mNumMeshes = 1;
    scene.mMeshes = new aiMesh*[1] {SkeletonMesh(*skeleton)};
    if (scene.mNumMaterials == 0)
    {
        scene.mNumMaterials = 1;
        scene.mMaterials = new aiMaterial*[1] {new aiMaterial};
    }
}

// A text glTF names its buffer as a second file; the seed carries it inline, so one file is the whole input.
QByteArray EmbedBuffers(const aiExportDataBlob& blob)
{
    QJsonObject document = QJsonDocument::fromJson(QByteArray(static_cast<const char*>(blob.data),
                                                              static_cast<qsizetype>(blob.size)))
                               .object();
    QJsonArray buffers = document.value(QStringLiteral("buffers")).toArray();
    if (blob.next == nullptr || buffers.size() != 1)
        return {};
    const QByteArray bytes(static_cast<const char*>(blob.next->data), static_cast<qsizetype>(blob.next->size));
    QJsonObject buffer = buffers[0].toObject();
    buffer[QStringLiteral("uri")] =
        QString::fromLatin1("data:application/octet-stream;base64," + bytes.toBase64());
    buffers[0] = buffer;
    document[QStringLiteral("buffers")] = buffers;
    return QJsonDocument(document).toJson(QJsonDocument::Compact);
}

QByteArray Export(const aiScene& scene, const Format& format)
{
    Assimp::Exporter exporter;
    const aiExportDataBlob* blob = exporter.ExportToBlob(&scene, format.id);
    if (blob == nullptr)
    {
        std::fprintf(stderr, "cannot export as %s: %s\n", format.id, exporter.GetErrorString());
        return {};
    }
    const std::string id = format.id;
    if (id == "gltf2")
        return EmbedBuffers(*blob);
    const QByteArray bytes(static_cast<const char*>(blob->data), static_cast<qsizetype>(blob->size));
    return id == "fbx" ? CloseBinaryFbxRecords(bytes) : bytes;
}

std::unique_ptr<aiScene> Read(const QString& path)
{
    Assimp::Importer importer;
    // As the studio reads it: the skeleton alone, without a made-up mesh skinned by every node.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    if (importer.ReadFile(QFile::encodeName(path).toStdString(), 0) == nullptr)
    {
        std::fprintf(stderr, "cannot read %s: %s\n", qPrintable(path), importer.GetErrorString());
        return nullptr;
    }
    return std::unique_ptr<aiScene>(importer.GetOrphanedScene());
}

bool WriteExports(const aiScene& scene, bool whole, const QString& name, const QDir& output)
{
    for (const Format& format : Formats)
    {
        if (whole && !format.whole)
            continue;
        const QByteArray bytes = Export(scene, format);
        const QString directory = QString::fromLatin1(format.directory);
        const QString file = QStringLiteral("%1/%2_%3.%4").arg(directory, name, QString::fromLatin1(format.id),
                                                              QString::fromLatin1(format.extension));
        if (bytes.isEmpty() || !output.mkpath(directory) || !WriteFile(output.filePath(file), bytes))
        {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(output.filePath(file)));
            return false;
        }
    }
    return true;
}

bool CopySkeleton(const QString& path, const QDir& output)
{
    QFile source(path);
    return source.open(QIODevice::ReadOnly) && output.mkpath(QStringLiteral("bvh")) &&
           WriteFile(output.filePath(QStringLiteral("bvh/") + QFileInfo(path).fileName()), source.readAll());
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::fprintf(stderr, "usage: %s <skeleton.bvh> <output directory>\n", argv[0]);
        return 2;
    }
    const QString skeleton = QString::fromLocal8Bit(argv[1]);
    const QDir output(QString::fromLocal8Bit(argv[2]));
    const std::unique_ptr<aiScene> whole = Read(skeleton);
    std::unique_ptr<aiScene> small = Read(skeleton);
    if (!whole || !small)
        return 1;
    Prune(*small->mRootNode, SmallDepth);
    DropAnimations(*small);
    AddSkinnedMesh(*small);
    const bool written = CopySkeleton(skeleton, output) &&
                         WriteExports(*whole, true, QStringLiteral("humanoid"), output) &&
                         WriteExports(*small, false, QStringLiteral("skinned"), output);
    return written ? 0 : 1;
}
