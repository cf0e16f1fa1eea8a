#include "RigFiles.h"

#include <functional>
#include <memory>

#include <assimp/Exporter.hpp>

#include "BinaryFbx.h"
#include "SkinnedMesh.h"
#include <assimp/scene.h>

namespace
{
using Vector = SkeletonRecognizer::Vector;

aiMatrix4x4 Armature(const rigfiles::Options& options)
{
    const std::array<double, 16>& m = options.armature;
    return aiMatrix4x4(ai_real(m[0]), ai_real(m[1]), ai_real(m[2]), ai_real(m[3]), ai_real(m[4]), ai_real(m[5]),
                       ai_real(m[6]), ai_real(m[7]), ai_real(m[8]), ai_real(m[9]), ai_real(m[10]), ai_real(m[11]),
                       ai_real(m[12]), ai_real(m[13]), ai_real(m[14]), ai_real(m[15]));
}

aiVector3D At(const Vector& v)
{
    return aiVector3D(ai_real(v[0]), ai_real(v[1]), ai_real(v[2]));
}

bool Skins(const TruthRig& rig, size_t bone)
{
    const bool told = std::any_of(rig.bones.begin(), rig.bones.end(), [](const SkeletonRecognizer::Bone& b) {
        return b.skinning != SkeletonRecognizer::Skinning::Unknown;
    });
    return !told || rig.bones[bone].skinning == SkeletonRecognizer::Skinning::Skins;
}

// One vertex at each joint that skins, weighted fully to it.
aiMesh* BodyMesh(const TruthRig& rig, const std::vector<aiMatrix4x4>& globals)
{
    std::vector<MeshJoint> joints;
    for (size_t i = 0; i < rig.bones.size(); ++i)
        if (Skins(rig, i))
            joints.emplace_back(rig.bones[i].name.toStdString(), globals[i]);
    return SkinnedMesh("Body", joints);
}

// A lone triangle: the prop in the scene's group of things that are no bones.
aiMesh* Crate()
{
    auto* mesh = new aiMesh;
    mesh->mName = "Crate";
    mesh->mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
    mesh->mNumVertices = 3;
    mesh->mVertices = new aiVector3D[3] {{0, 0, 0}, {0.5f, 0, 0}, {0, 0.5f, 0}};
    mesh->mNumFaces = 1;
    mesh->mFaces = new aiFace[1];
    mesh->mFaces[0].mNumIndices = 3;
    mesh->mFaces[0].mIndices = new unsigned[3] {0, 1, 2};
    return mesh;
}

aiNode* Child(aiNode* parent, const char* name)
{
    auto* node = new aiNode(name);
    parent->addChildren(1, &node);
    return node;
}

aiNode* Holding(aiNode* parent, const char* name, unsigned mesh)
{
    aiNode* node = Child(parent, name);
    node->mNumMeshes = 1;
    node->mMeshes = new unsigned[1] {mesh};
    return node;
}

// The mesh beside the skeleton, and nodes that are no bones: a camera, a light, a group holding a prop.
void AddSceneDressing(aiScene& scene)
{
    aiNode* root = scene.mRootNode;
    Holding(root, "Body", 0);
    aiNode* crate = Holding(Child(root, "Props"), "Crate", 1);
    aiMatrix4x4::Translation(aiVector3D(1.5f, 0, 0), crate->mTransformation);
    aiMatrix4x4::Translation(aiVector3D(0, 1.5f, 6), Child(root, "Camera")->mTransformation);
    scene.mNumCameras = 1;
    scene.mCameras = new aiCamera*[1] {new aiCamera};
    scene.mCameras[0]->mName = "Camera";
    Child(root, "Light");
    scene.mNumLights = 1;
    scene.mLights = new aiLight*[1] {new aiLight};
    scene.mLights[0]->mName = "Light";
    scene.mLights[0]->mType = aiLightSource_POINT;
}

std::unique_ptr<aiScene> MakeScene(const TruthRig& rig, const rigfiles::Options& options)
{
    auto scene = std::make_unique<aiScene>();
    scene->mRootNode = new aiNode("Scene");
    aiNode* top = options.hasArmature ? Child(scene->mRootNode, "Armature") : scene->mRootNode;
    const aiMatrix4x4 above = options.hasArmature ? Armature(options) : aiMatrix4x4();
    top->mTransformation = above;
    // The nodes stand in the node pose; the mesh was bound in the rig's own.
    const auto standing = [&](size_t bone) {
        return At(options.nodePose.empty() ? rig.bones[bone].position : options.nodePose[bone]);
    };
    std::vector<aiNode*> nodes;
    std::vector<aiMatrix4x4> globals;
    for (size_t i = 0; i < rig.bones.size(); ++i)
    {
        const SkeletonRecognizer::Bone& bone = rig.bones[i];
        const bool rooted = bone.parent >= 0 && bone.parent < int(nodes.size());
        aiNode* node = Child(rooted ? nodes[size_t(bone.parent)] : top, bone.name.toStdString().c_str());
        aiMatrix4x4::Translation(standing(i) - (rooted ? standing(size_t(bone.parent)) : aiVector3D()),
                                 node->mTransformation);
        aiMatrix4x4 bound;
        globals.push_back(above * aiMatrix4x4::Translation(At(bone.position), bound));
        nodes.push_back(node);
    }
    scene->mNumMaterials = 1;
    scene->mMaterials = new aiMaterial*[1] {new aiMaterial};
    if (options.skinned)
    {
        scene->mNumMeshes = 2;
        scene->mMeshes = new aiMesh*[2] {BodyMesh(rig, globals), Crate()};
        AddSceneDressing(*scene);
    }
    return scene;
}

void WriteJoint(const TruthRig& rig, const std::vector<std::vector<int>>& children, int bone, int depth,
                QByteArray& out)
{
    const QByteArray indent(depth * 2, ' ');
    const SkeletonRecognizer::Bone& b = rig.bones[size_t(bone)];
    const Vector from = b.parent >= 0 ? rig.bones[size_t(b.parent)].position : Vector {0, 0, 0};
    const auto offset = [](const Vector& to, const Vector& at) {
        return QByteArray("OFFSET ") + QByteArray::number(to[0] - at[0], 'f', 6) + ' ' +
               QByteArray::number(to[1] - at[1], 'f', 6) + ' ' + QByteArray::number(to[2] - at[2], 'f', 6) + '\n';
    };
    out += indent + (depth == 0 ? "ROOT " : "JOINT ") + b.name.toUtf8() + '\n' + indent + "{\n";
    out += indent + "  " + offset(b.position, from);
    out += indent + (depth == 0 ? "  CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n"
                                : "  CHANNELS 3 Zrotation Xrotation Yrotation\n");
    for (int child : children[size_t(bone)])
        WriteJoint(rig, children, child, depth + 1, out);
    if (b.hasTip)
        out += indent + "  End Site\n" + indent + "  {\n" + indent + "    " + offset(b.tip, b.position) + indent +
               "  }\n";
    out += indent + "}\n";
}

int ChannelCount(const TruthRig& rig)
{
    return 3 + 3 * int(rig.bones.size());
}
} // namespace

namespace rigfiles
{
QByteArray Export(const TruthRig& rig, const char* format, const Options& options)
{
    const std::unique_ptr<aiScene> scene = MakeScene(rig, options);
    Assimp::Exporter exporter;
    const aiExportDataBlob* blob = exporter.ExportToBlob(scene.get(), format);
    if (blob == nullptr)
        return {};
    const QByteArray bytes(static_cast<const char*>(blob->data), qsizetype(blob->size));
    return QByteArray(format) == "fbx" ? CloseBinaryFbxRecords(bytes) : bytes;
}

QByteArray Bvh(const TruthRig& rig)
{
    std::vector<std::vector<int>> children(rig.bones.size());
    for (size_t i = 1; i < rig.bones.size(); ++i)
        children[size_t(rig.bones[i].parent)].push_back(int(i));
    QByteArray out = "HIERARCHY\n";
    WriteJoint(rig, children, 0, 0, out);
    out += "MOTION\nFrames: 1\nFrame Time: 0.0333333\n";
    for (int i = 0; i < ChannelCount(rig); ++i)
        out += i == 0 ? "0" : " 0";
    return out + '\n';
}

TruthRig AsWritten(const TruthRig& rig, const Options& options)
{
    TruthRig moved = rig;
    for (size_t i = 0; i < options.nodePose.size() && i < moved.bones.size(); ++i)
    {
        const Vector& to = options.nodePose[i];
        const Vector& from = rig.bones[i].position;
        SkeletonRecognizer::Bone& bone = moved.bones[i];
        bone.position = to;
        bone.tip = {bone.tip[0] - from[0] + to[0], bone.tip[1] - from[1] + to[1], bone.tip[2] - from[2] + to[2]};
    }
    if (options.hasArmature)
    {
        const aiMatrix4x4 armature = Armature(options);
        for (SkeletonRecognizer::Bone& bone : moved.bones)
        {
            const aiVector3D at = armature * At(bone.position);
            const aiVector3D tip = armature * At(bone.tip);
            bone.position = {at.x, at.y, at.z};
            bone.tip = {tip.x, tip.y, tip.z};
        }
    }
    if (!options.skinned)
        return moved;
    // Bones that skin, and every bone above one of them; a leaf left out under one of them marks where it ends.
    const size_t count = rig.bones.size();
    std::vector<bool> kept(count, false);
    std::vector<bool> leaf(count, true);
    for (size_t i = count; i-- > 0;)
    {
        kept[i] = kept[i] || Skins(rig, i);
        if (rig.bones[i].parent >= 0)
        {
            kept[size_t(rig.bones[i].parent)] = kept[size_t(rig.bones[i].parent)] || kept[i];
            leaf[size_t(rig.bones[i].parent)] = false;
        }
    }
    TruthRig written = moved;
    written.bones.clear();
    std::vector<int> index(count, -1);
    for (size_t i = 0; i < count; ++i)
    {
        SkeletonRecognizer::Bone bone = moved.bones[i];
        const int parent = bone.parent >= 0 ? index[size_t(bone.parent)] : -1;
        if (!kept[i])
        {
            SkeletonRecognizer::Bone* owner = parent >= 0 ? &written.bones[size_t(parent)] : nullptr;
            if (owner != nullptr && leaf[i] && !owner->hasTip)
            {
                owner->hasTip = true;
                owner->tip = bone.position;
            }
            continue;
        }
        bone.parent = parent;
        bone.skinning = Skins(rig, i) ? SkeletonRecognizer::Skinning::Skins : SkeletonRecognizer::Skinning::DoesNotSkin;
        index[i] = int(written.bones.size());
        written.bones.push_back(bone);
    }
    return written;
}
} // namespace rigfiles
