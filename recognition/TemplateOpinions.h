#pragma once

#include <memory>
#include <vector>

#include <QString>

#include <zelkin/SkeletonRecognizer.h>

class MappingTemplate;
class NameMatcher;
class TemplateLibrary;

// The mapping templates as one more reader of bone names: what node each would give a bone on its own.
class TemplateOpinions
{
public:
    explicit TemplateOpinions(const TemplateLibrary& library);
    ~TemplateOpinions();

    // The node of the most specific template pattern that ends the name (-1 when none does), and that
    // pattern's length.
    int NodeFor(const QString& bone, int* patternLength = nullptr) const;

private:
    struct Compiled;
    std::vector<std::unique_ptr<Compiled>> mTemplates;
};
