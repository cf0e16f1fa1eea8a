#include <zelkin/ValidationLog.h>

ValidationLog::ErrorInfo::ErrorInfo(int nodeId, ValidationState severity, const std::string& message)
    : mNodeId(nodeId), mSeverity(severity), mMessage(message)
{
}

ValidationLog::ValidationLog() : mState(NotValidated) {}

ValidationLog::ValidationLog(const ValidationLog&) = default;

ValidationLog::ValidationLog(ValidationLog&&) noexcept = default;

ValidationLog& ValidationLog::operator=(const ValidationLog&) = default;

ValidationLog& ValidationLog::operator=(ValidationLog&&) noexcept = default;

ValidationLog::~ValidationLog() = default;

void ValidationLog::SetValidationState(ValidationState state, const std::string& message)
{
    mState = state;
    if (&message != &mMessage)
        mMessage = message;
}

ValidationState ValidationLog::GetValidationState() const
{
    return mState;
}

const std::string& ValidationLog::GetValidationMessage() const
{
    return mMessage;
}

bool ValidationLog::IsErrorOrWarning() const
{
    return mState == Warning || mState == Error;
}

void ValidationLog::LogError(int nodeId, const std::string& message)
{
    mErrorInfos.emplace_back(nodeId, Error, message);
}

void ValidationLog::LogWarning(int nodeId, const std::string& message)
{
    mErrorInfos.emplace_back(nodeId, Warning, message);
}

int ValidationLog::GetNbErrorInfo() const
{
    return static_cast<int>(mErrorInfos.size());
}

const ValidationLog::ErrorInfo& ValidationLog::GetErrorInfo(int index) const
{
    return mErrorInfos[static_cast<size_t>(index)];
}
