#include "ValidationRun.h"

#include <algorithm>

#include <zelkin/BoneCatalogue.h>

#include "AtLeastOneBoneValidator.h"
#include "HipsXAxisValidator.h"
#include "HoleValidator.h"
#include "LeftArmsXAxisValidator.h"
#include "RequiredBoneValidator.h"
#include "RightArmsXAxisValidator.h"
#include "SameGeometryValidator.h"

namespace {

constexpr int kFirstInlineRoll = 41;
constexpr int kFirstLeafRoll = 172;
// The right forearm's level-1 leaf (179) is deliberately not checked; existing characterizations rely on
// that, so the loop stops at 178.
constexpr int kLastMixedRollCheck = 178;
constexpr int kLimbsPerLevel = 8;
constexpr int kLeafLevels = 5;

std::vector<int32_t> Range(int first, int count)
{
    std::vector<int32_t> ids(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        ids[static_cast<size_t>(i)] = first + i;
    return ids;
}

void ResetMarks(const uint32_t* assigned, ValidationOutcome& outcome)
{
    for (int id = 0; id < BoneCatalogue::NodeCount; ++id)
        outcome.marks[id] = CharacterizationValidator::IsAssigned(assigned, id) ? Valid : NotValidated;
}

void AppendLine(std::string& text, const std::string& line)
{
    if (!text.empty())
        text += '\n';
    text += line;
}

void MarkNode(const ValidationLog::ErrorInfo& info, ValidationOutcome& outcome)
{
    const int id = info.GetNodeId();
    // Host logs may name anything; unassigned nodes stay unflagged and an error is never downgraded.
    if (!BoneCatalogue::IsValidNode(id) || outcome.marks[id] == NotValidated || outcome.marks[id] == Error)
        return;
    outcome.marks[id] = info.GetSeverity();
    outcome.nodeMessages[id] = info.GetMessage();
}

void MergeLogs(const std::vector<ValidationLog>& logs, ValidationOutcome& outcome)
{
    outcome.state = logs.front().GetValidationState();
    for (const ValidationLog& log : logs) {
        outcome.state = std::max(outcome.state, log.GetValidationState());
        if (!log.IsErrorOrWarning())
            continue;
        AppendLine(outcome.message, log.GetValidationMessage());
        for (int i = 0; i < log.GetNbErrorInfo(); ++i)
            MarkNode(log.GetErrorInfo(i), outcome);
    }
}

// Catches a required node missing even when every rule was satisfied.
void CheckRequired(const uint32_t* assigned, ValidationOutcome& outcome)
{
    if (outcome.state >= Warning)
        return;
    for (int id = 0; id < BoneCatalogue::NodeCount; ++id) {
        if (BoneCatalogue::IsRequired(id) && !CharacterizationValidator::IsAssigned(assigned, id)) {
            outcome.state = Error;
            return;
        }
    }
}

bool AnyLeafAssigned(const uint32_t* assigned, int levelOneLeaf)
{
    for (int level = 0; level < kLeafLevels; ++level)
        if (CharacterizationValidator::IsAssigned(assigned, levelOneLeaf + level * kLimbsPerLevel))
            return true;
    return false;
}

// The solver drives a limb's twist either through its in-line roll bone or through its leaf chain, not both.
void CheckMixedRollBones(const uint32_t* assigned, ValidationOutcome& outcome)
{
    static const std::string kMixed = "Mixing In-Line and Leaf roll bone is not allowed.";
    for (int leaf = kFirstLeafRoll; leaf <= kLastMixedRollCheck; ++leaf) {
        const int inlineRoll = kFirstInlineRoll + (leaf - kFirstLeafRoll) % kLimbsPerLevel;
        if (!CharacterizationValidator::IsAssigned(assigned, inlineRoll) || !AnyLeafAssigned(assigned, leaf))
            continue;
        for (int id : {inlineRoll, leaf}) {
            outcome.marks[id] = Error;
            outcome.nodeMessages[id] = kMixed;
        }
        outcome.state = Error;
        outcome.message += std::string("\n Mixed roll bone at ") + BoneCatalogue::NodeName(inlineRoll) + ".";
    }
}

} // namespace

ValidationRun::ValidationRun()
{
    mValidators.push_back(std::make_shared<AtLeastOneBoneValidator>());
    mValidators.push_back(std::make_shared<RequiredBoneValidator>());
    // "Spine" itself is not part of its chain, while "Neck" is: the asymmetry is intended.
    mValidators.push_back(std::make_shared<HoleValidator>("spine", Range(23, 9)));
    std::vector<int32_t> neck = Range(32, 9);
    neck.insert(neck.begin(), 20);
    mValidators.push_back(std::make_shared<HoleValidator>("neck", std::move(neck)));
    for (const BoneCatalogue::Chain& chain : BoneCatalogue::Chains())
        mValidators.push_back(std::make_shared<HoleValidator>(chain.label, Range(chain.first, 4)));
    mValidators.push_back(std::make_shared<HipsXAxisValidator>());
    mValidators.push_back(std::make_shared<RightArmsXAxisValidator>());
    mValidators.push_back(std::make_shared<LeftArmsXAxisValidator>());
    mValidators.push_back(std::make_shared<SameGeometryValidator>());
}

const std::vector<std::shared_ptr<CharacterizationValidator>>& ValidationRun::Validators() const
{
    return mValidators;
}

ValidationOutcome ValidationRun::Run(const uint32_t* assigned, const ZELCharacter* character,
                                     const std::function<void(ValidationLog&)>& hostValidate) const
{
    ValidationOutcome outcome;
    ResetMarks(assigned, outcome);

    std::vector<ValidationLog> logs;
    logs.reserve(mValidators.size() + 1);
    for (const auto& validator : mValidators) {
        if (validator->IsApplicable(assigned)) {
            logs.emplace_back();
            validator->Validate(assigned, character, logs.back());
        }
    }
    if (hostValidate) {
        logs.emplace_back();
        hostValidate(logs.back());
    }

    if (logs.empty()) {
        outcome.state = Error;
        outcome.message = "Missing required bones.";
    } else {
        MergeLogs(logs, outcome);
        CheckRequired(assigned, outcome);
    }
    CheckMixedRollBones(assigned, outcome);
    return outcome;
}
