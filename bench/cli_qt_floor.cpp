// The least any Qt program of ours could do for `zelkin characterize`: load Qt Core beside Assimp, read the file as
// the command line reads it (large allocations kept on the heap, as it keeps them) and write two files the size of
// its outputs for the Mixamo rig through QSaveFile, which syncs each to disk. bench_cli sets it beside the import
// alone; what the command line takes above it is its own work.
#include <QByteArray>
#include <QSaveFile>
#include <QString>

#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace
{
bool Write(const QString& path, int bytes)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(QByteArray(bytes, 'x')) == bytes && file.flush()
        && file.commit();
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 1;
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 64 << 20);
    mallopt(M_TRIM_THRESHOLD, 128 << 20);
#endif
    Assimp::Importer importer;
    importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    const aiScene* scene = importer.ReadFile(argv[1], 0);
    if (scene == nullptr || scene->mRootNode == nullptr)
        return 1;
    const QString output = QString::fromLocal8Bit(argv[2]);
    return Write(output + QStringLiteral(".zelc"), 8312) && Write(output + QStringLiteral(".bones.xml"), 6836) ? 0 : 1;
}
