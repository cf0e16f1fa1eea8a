#include "SceneImporter.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <QDir>
#include <QFileInfo>

#include <assimp/BaseImporter.h>
#include <assimp/DefaultIOSystem.h>
#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>
#include <assimp/version.h>

#include "BvhRotationOrders.h"
#include "ImportProgressHandler.h"
#include "ProgressIOSystem.h"
#include "Scene.h"
#include "SceneBuilder.h"
#include "SceneFileCheck.h"
#include "SceneRepair.h"

namespace {

void Configure(Assimp::Importer& importer)
{
    // Pivots fold into the node transforms; helper nodes that still appear are folded by SceneBuilder.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    // A file without geometry would otherwise get a made-up mesh skinned by every node, end sites included.
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_MATERIALS, false);
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_READ_TEXTURES, false);
}

QHash<QString, ZELRotationOrder> RotationOrders(const QString& path)
{
    if (QFileInfo(path).suffix().compare(QLatin1String("bvh"), Qt::CaseInsensitive) == 0)
        return BvhRotationOrders::Read(path);
    return {};
}

QString AssimpError(const Assimp::Importer& importer)
{
    const QString error = QString::fromUtf8(importer.GetErrorString()).trimmed();
    return error.isEmpty() ? QStringLiteral("unknown format or damaged file") : error;
}

// Never freed, but reachable from a static, so that leak checkers do not count it.
void KeepUntilExit(std::unique_ptr<aiScene> scene)
{
    static std::vector<aiScene*>* const kept = new std::vector<aiScene*>;
    kept->push_back(scene.release());
}

std::vector<Assimp::BaseImporter*> ReadersClaiming(const Assimp::Importer& importer, const std::string& path)
{
    const QString name = QString::fromStdString(path);
    std::vector<Assimp::BaseImporter*> readers;
    for (size_t index = 0; index < importer.GetImporterCount(); ++index)
    {
        std::set<std::string> extensions;
        Assimp::BaseImporter* reader = importer.GetImporter(index);
        reader->GetExtensionList(extensions);
        const bool claims = std::any_of(extensions.begin(), extensions.end(), [&name](const std::string& extension) {
            return name.endsWith(QLatin1Char('.') + QString::fromStdString(extension), Qt::CaseInsensitive);
        });
        if (claims)
            readers.push_back(reader);
    }
    return readers;
}

// When several readers share the file's extension, Assimp asks them in turn whether they accept the file, and when
// none does it offers the file to every other reader it has, judged by content; hostile files crash some of those.
// So we ask first, as Assimp would, and refuse the file when none accepts; the others are dropped, so that Assimp
// takes the one that did without asking them all again (for glTF, a second parse of the file's JSON). False when
// none accepts. A file whose extension no reader claims still goes to the search, so that a renamed skeleton opens.
bool KeepOnlyTheReaderThatAccepts(Assimp::Importer& importer, const std::string& path)
{
    const std::vector<Assimp::BaseImporter*> readers = ReadersClaiming(importer, path);
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

} // namespace

bool SceneImporter::IsClaimed(const QString& path)
{
    static const QStringList extensions = [] {
        std::string list;
        Assimp::Importer().GetExtensionList(list);
        // "*.3ds;*.obj;..."
        return QString::fromStdString(list).remove(QLatin1Char('*')).split(QLatin1Char(';'), Qt::SkipEmptyParts);
    }();
    return std::any_of(extensions.begin(), extensions.end(),
                       [&path](const QString& extension) { return path.endsWith(extension, Qt::CaseInsensitive); });
}

QString SceneImporter::ReaderVersion()
{
    return QStringLiteral("Assimp %1.%2.%3").arg(aiGetVersionMajor()).arg(aiGetVersionMinor()).arg(aiGetVersionRevision());
}

bool SceneImporter::Import(const QString& path, Scene& scene)
{
    mError.clear();
    mCancelled = false;
    const QFileInfo info(path);
    if (!info.isFile())
        return Fail(path, QStringLiteral("no such file"));
    const QString hazard = SceneFileCheck::Problem(path);
    if (!hazard.isEmpty())
        return Fail(path, hazard);

    ImportProgress progress(mCallback, info.size());
    if (!progress.Report(0))
        return Cancel(path);
    Scene imported;
    try
    {
        Assimp::Importer importer;
        Configure(importer);
        // The importer owns both and deletes them before `progress` goes.
        importer.SetIOHandler(new ProgressIOSystem(progress));
        importer.SetProgressHandler(new ImportProgressHandler(progress));
        const std::string file = QFile::encodeName(path).toStdString();
        if (!KeepOnlyTheReaderThatAccepts(importer, file))
            return Fail(path, QStringLiteral("it is not a valid .%1 file").arg(QFileInfo(path).suffix()));
        importer.ReadFile(file, 0);
        const QString readError = AssimpError(importer); // taking the scene clears it
        // Ours at once, so that it is mended before anything can delete it.
        std::unique_ptr<aiScene> source(importer.GetOrphanedScene());
        if (source)
            SceneRepair::DropRepeatedBones(*source);
        if (progress.IsCancelled())
            return Cancel(path);
        if (source == nullptr || source->mRootNode == nullptr)
            return Fail(path, readError);
        if (!progress.Report(ImportProgress::ParsedPercent))
            return Cancel(path);
        SceneBuilder(*source, RotationOrders(path)).Build(imported);
        if (mSourceReleasedAtExit)
            KeepUntilExit(std::move(source));
    }
    catch (const std::exception& error)
    {
        return Fail(path, QString::fromUtf8(error.what()));
    }
    if (imported.IsEmpty())
        return Fail(path, QStringLiteral("the file holds no skeleton"));
    progress.Report(100);
    imported.SetSourcePath(path);
    scene = std::move(imported);
    return true;
}

bool SceneImporter::Fail(const QString& path, const QString& reason)
{
    mError = QStringLiteral("cannot read %1: %2").arg(QDir::toNativeSeparators(path), reason);
    return false;
}

bool SceneImporter::Cancel(const QString& path)
{
    mCancelled = true;
    return Fail(path, QStringLiteral("import cancelled"));
}
