#pragma once

#include <memory>
#include <vector>

#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <zelkin/CharacterizationExport.h>
#include <zelkin/NameMatcher.h>

class TemplateLibrary;

// Picks a mapping template for a skeleton when the user names none. Every template of the library is applied to
// an empty characterization; the one that maps the most required nodes wins, then the one that maps the most
// nodes. On a tie the template that comes first in the library's order (TemplateLibrary::Names(), alphabetical
// without regard to case) wins, so a result never depends on the order files happen to be read in.
//
// The score is the share of the skeleton's bones that got a node, counted only over bones that could be nodes:
// a leaf whose name marks the end of a chain (see MarksEnd) could not.
class ZELKIN_CHARACTERIZATION_EXPORT TemplateChooser
{
public:
    struct Result
    {
        QString templateName; // empty when no template maps a single bone
        int requiredMapped = 0;
        int mappedNodes = 0;
        int candidateBones = 0;
        std::vector<NameMatcher::Assignment> assignments;

        bool IsValid() const { return !templateName.isEmpty(); }
        // mappedNodes / candidateBones, 0 without candidates.
        double Score() const;
        // For the user, e.g. "Template "Mixamo": 62 of 62 bones mapped (100%)."
        QString Summary() const;
    };

    // Reads and compiles every template once; a template that cannot be read is left out and named in Problems().
    TemplateChooser(const TemplateLibrary& library, NameMatcher::MatchType type, const QStringList& delimiters);
    ~TemplateChooser();
    TemplateChooser(const TemplateChooser&) = delete;
    TemplateChooser& operator=(const TemplateChooser&) = delete;

    // The templates taking part, in library order.
    QStringList TemplateNames() const;
    QStringList Problems() const { return mProblems; }

    // offeredBones in scene order, parents first (the first is the root for templates that use it); leafBones
    // names those of them without children.
    Result Choose(const QStringList& offeredBones, const QSet<QString>& leafBones,
                  const QString& prefix = QString()) const;

    // Ends, ignoring case, with "End", "Nub", "Site" or "Tip" (so also "_End", "EndSite", "_Tip"), or holds
    // "EndSite_", as importers name BVH end sites ("EndSite_<parent>", perhaps behind a prefix).
    static bool MarksEnd(QStringView name);
    static int CandidateCount(const QStringList& offeredBones, const QSet<QString>& leafBones);

private:
    struct Compiled;
    std::vector<std::unique_ptr<Compiled>> mTemplates;
    QStringList mProblems;
};
