#pragma once

// What has become of a template since the window read it, and what the user wants done about it.
//
// Others work on the same account set: they delete, rename and save, and the id of a template that is gone is
// given to the next new one. Before the window writes to a template or opens one from its tree, one question
// to the account set finds that out. Nothing is said as long as nothing has happened. Part of frmVICenter.

#include <optional>
#include <string>

#include "center/template/open_template.h"

namespace vicenter::center {

enum class TemplateFate {
    AsLoaded,
    Changed,  // its lines or its name
    Gone,     // deleted, or its id belongs to another user's template now
    Unknown,  // the account set does not answer
};

// The open template, its lines included.
TemplateFate FateOfOpenTemplate(const OpenTemplate& open, const std::string& userId);

// The lines of a template as the account set holds them now; nothing when it does not answer.
std::optional<LinesDigest> DigestOfStored(const std::string& templateId);

struct NodeFate {
    TemplateFate fate = TemplateFate::Unknown;
    std::string name;  // as the account set has it
};
// A node of the tree: whether it still stands for the template that it names.
NodeFate FateOfNode(const std::string& id, const std::string& name, const std::string& userId);

enum class SaveChoice {
    Overwrite,
    KeepAsNew,     // the user's lines become a template of their own
    LookAtTheirs,  // the window shows what is stored; the user's lines are one step of undo away
    Leave,         // nothing happens, the user's lines stay
};
// Asks what is to happen to the user's lines; fate is Changed or Gone. Only the user's own template may be
// overwritten.
SaveChoice AskHowToSave(TemplateFate fate, const std::string& name, bool own);

// What the user learns of a node that stands for nothing any more.
void TellGone(const std::string& name);

}  // namespace vicenter::center
