// Hostile bytes as the reader's answer, as a reader that a file took over could send them. Whatever arrives, in
// whatever pieces, the decoder must neither read outside it nor build a scene that breaks the scene's promises, and
// the pieces must not change the verdict.
#include <cmath>
#include <cstddef>
#include <cstdint>

#include <QByteArray>
#include <QSet>

#include "FuzzCheck.h"
#include "ReaderAnswer.h"
#include "Scene.h"

namespace
{
struct Verdict
{
    bool garbage;
    bool failure;
    bool built;
    QStringList bones;
};

Verdict Decode(const QByteArray& bytes, qsizetype piece)
{
    ReaderAnswer answer;
    for (qsizetype at = 0; at < bytes.size(); at += piece)
        answer.Feed(bytes.mid(at, piece));
    for (const int percent : answer.TakeProgress())
        require(percent >= 0 && percent <= 100);
    Scene scene;
    const bool built = !answer.IsGarbage() && answer.HasSkeleton() && answer.BuildScene(scene);
    require(built || scene.IsEmpty());
    QSet<QString> names;
    for (int index = 0; index < scene.BoneCount(); ++index)
    {
        const SceneBone& bone = scene.Bone(index);
        require(!bone.name.isEmpty() && !names.contains(bone.name) && bone.parent >= -1 && bone.parent < index);
        names.insert(bone.name);
        // Transforms that are not numbers never get in.
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                require(std::isfinite(bone.local(row, column)));
    }
    return {answer.IsGarbage(), answer.HasFailure(), built, scene.BoneNames()};
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const Verdict whole = Decode(bytes, qMax<qsizetype>(1, bytes.size()));
    // A piece size from the input itself, so the fuzzer can steer it.
    const qsizetype piece = size > 0 ? 1 + data[size - 1] % 61 : 1;
    const Verdict split = Decode(bytes, piece);
    require(whole.garbage == split.garbage && whole.failure == split.failure && whole.built == split.built &&
            whole.bones == split.bones);
    return 0;
}
