#include "SkeletonReading.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <exception>
#include <filesystem>
#include <iterator>
#include <memory>
#include <new>
#include <set>
#include <utility>
#include <vector>

#include <assimp/BaseImporter.h>
#include <assimp/DefaultIOSystem.h>
#include <assimp/config.h>
#include <assimp/scene.h>
#include <assimp/version.h>

#include "BvhRotationOrders.h"
#include "ImportProgress.h"
#include "ImportProgressHandler.h"
#include "ProgressIOSystem.h"
#include "SkeletonExtraction.h"

namespace
{
std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

std::string Extension(const std::string& path)
{
    const std::string extension = std::filesystem::path(path).extension().string();
    return Lower(extension.empty() ? extension : extension.substr(1));
}

void Configure(Assimp::Importer& importer)
{
    // Pivots fold into the node transforms; helper nodes that still appear are folded by the extraction.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    // A file without geometry would otherwise get a made-up mesh skinned by every node, end sites included.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_MATERIALS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_TEXTURES, false);
}

// When several readers share the file's extension, Assimp asks them in turn whether they accept the file, and when
// none does it offers the file to every other reader it has. We ask first, as Assimp would, and refuse the file when
// none accepts, which says more than a reader giving up on a file that is not its kind; the others are dropped, so
// that Assimp takes the one that did without asking them all again (for glTF, a second parse of the file's JSON).
bool KeepOnlyTheReaderThatAccepts(Assimp::Importer& importer, const std::string& path)
{
    const std::string extension = Extension(path);
    std::vector<Assimp::BaseImporter*> readers;
    for (size_t index = 0; index < importer.GetImporterCount(); ++index)
    {
        std::set<std::string> extensions;
        importer.GetImporter(index)->GetExtensionList(extensions);
        if (extensions.count(extension) > 0)
            readers.push_back(importer.GetImporter(index));
    }
    if (readers.size() < 2)
        return true;
    Assimp::DefaultIOSystem files; // a look at the file is not progress of the import
    const auto accepting = std::find_if(readers.begin(), readers.end(), [&path, &files](Assimp::BaseImporter* reader) {
        return reader->CanRead(path, &files, true);
    });
    if (accepting == readers.end())
        return false;
    for (Assimp::BaseImporter* reader : readers)
    {
        if (reader == *accepting)
            continue;
        importer.UnregisterLoader(reader); // hands the reader back to us
        delete reader;
    }
    return true;
}

std::string Encode(const std::vector<SkeletonExtraction::Bone>& bones)
{
    std::string out;
    readerwire::PutUint32(out, uint32_t(bones.size()));
    for (const SkeletonExtraction::Bone& bone : bones)
    {
        readerwire::PutUint32(out, uint32_t(bone.name.size()));
        out += bone.name;
        readerwire::PutUint32(out, uint32_t(bone.parent));
        for (unsigned row = 0; row < 4; ++row)
            for (unsigned column = 0; column < 4; ++column)
                readerwire::PutFloat(out, bone.local[row][column]);
        for (float part : {bone.preRotation.w, bone.preRotation.x, bone.preRotation.y, bone.preRotation.z})
            readerwire::PutFloat(out, part);
        readerwire::PutUint32(out, uint32_t(bone.rotationOrder));
        out.push_back(char((bone.skinsMesh ? readerwire::SkinsMesh : 0) | (bone.hasTip ? readerwire::HasTip : 0)));
        for (float part : {bone.tip.x, bone.tip.y, bone.tip.z})
            readerwire::PutFloat(out, part);
    }
    return out;
}

bool IsFinite(const SkeletonExtraction::Bone& bone)
{
    const float rest[] = {bone.preRotation.w, bone.preRotation.x, bone.preRotation.y, bone.preRotation.z,
                          bone.tip.x,         bone.tip.y,         bone.tip.z};
    const auto finite = [](float value) { return std::isfinite(value); };
    bool all = std::all_of(std::begin(rest), std::end(rest), finite);
    for (unsigned row = 0; row < 4; ++row)
        all = all && std::all_of(bone.local[row], bone.local[row] + 4, finite);
    return all;
}

// Thrown to end the reading with a reason.
struct Refusal
{
    std::string reason;
};
} // namespace

SkeletonReading::SkeletonReading(Sink sink)
    : mSink(std::move(sink))
{
    Configure(mImporter);
}

void SkeletonReading::Read(const std::string& path)
{
    try
    {
        ReadOrThrow(path);
    }
    catch (const Refusal& refusal)
    {
        Fail(refusal.reason);
    }
    catch (const std::bad_alloc&)
    {
        Fail("it needs more memory than the reader may take");
    }
    catch (const std::exception& error)
    {
        Fail(error.what());
    }
}

void SkeletonReading::ReadOrThrow(const std::string& path)
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    ImportProgress progress(
        [this](int percent) { mSink(readerwire::Progress, std::string(1, char(percent))); },
        error ? 0 : int64_t(size));
    progress.Report(0);
    // Assimp hands handlers back to their owner when they are replaced by nothing: they stay ours, and report to
    // `progress`, so they go before it does, detached first.
    const auto files = std::make_unique<ProgressIOSystem>(progress);
    const auto steps = std::make_unique<ImportProgressHandler>(progress);
    mImporter.SetIOHandler(files.get());
    mImporter.SetProgressHandler(steps.get());
    struct Detach
    {
        Assimp::Importer& importer;
        ~Detach()
        {
            importer.SetIOHandler(nullptr);
            importer.SetProgressHandler(nullptr);
        }
    } detach {mImporter};

    if (!KeepOnlyTheReaderThatAccepts(mImporter, path))
        throw Refusal {"it is not a valid ." + Extension(path) + " file"};
    const aiScene* scene = mImporter.ReadFile(path, 0);
    if (scene == nullptr || scene->mRootNode == nullptr)
    {
        const std::string reason = mImporter.GetErrorString();
        throw Refusal {reason.empty() ? std::string("unknown format or damaged file") : reason};
    }
    progress.Report(ImportProgress::ParsedPercent);
    const auto orders = Extension(path) == "bvh" ? bvh::RotationOrders(path) : std::map<std::string, ZELRotationOrder>();
    const std::vector<SkeletonExtraction::Bone> bones = SkeletonExtraction(*scene, orders).Bones();
    if (bones.empty())
        throw Refusal {"the file holds no skeleton"};
    const auto broken = std::find_if_not(bones.begin(), bones.end(), IsFinite);
    if (broken != bones.end())
        throw Refusal {"the transform of bone \"" + broken->name + "\" is not a number"};
    mSink(readerwire::Skeleton, Encode(bones));
}

void SkeletonReading::Fail(const std::string& reason)
{
    mSink(readerwire::Failure, reason);
}

std::string SkeletonReading::Extensions()
{
    std::string list;
    Assimp::Importer().GetExtensionList(list);
    // "*.3ds;*.obj;..."
    std::string lines;
    for (char c : list)
    {
        if (c == ';')
            lines += '\n';
        else if (c != '*' && c != '.')
            lines += char(std::tolower(static_cast<unsigned char>(c)));
    }
    return lines + '\n';
}

std::string SkeletonReading::Version()
{
    return "Assimp " + std::to_string(aiGetVersionMajor()) + '.' + std::to_string(aiGetVersionMinor()) + '.' +
           std::to_string(aiGetVersionRevision());
}
