#pragma once

// What has become of a template since the window read it, and what the user wants done about it.
//
// Others work on the same account set: they delete, rename and save, and the id of a template that is gone is
// given to the next new one. Before the window writes to a template or opens one from its tree, one question
// to the account set finds that out. Nothing is said as long as nothing has happened. Part of frmVICenter.

#include <optional>
#include <string>

#include "center/template/open_template.h"
#include "store/template_guard.h"

namespace vicenter::center {

using store::FoundTemplate;
using store::SeenTemplate;
using store::TemplateFate;

// The open template as it was read, its lines included.
SeenTemplate SeenOpen(const OpenTemplate& open, const std::string& userId);

// A node of the tree: whether it still stands for the template that it names.
FoundTemplate FateOfNode(const std::string& id, const std::string& name, const std::string& userId);

enum class SaveChoice {
    Overwrite,
    KeepAsNew,     // the user's lines become a template of their own
    LookAtTheirs,  // the window shows what is stored; the user's lines are one step of undo away
    Leave,         // nothing happens, the user's lines stay
};
// Asks what is to happen to the user's lines; found is Changed or Gone. Only the user's own template may be
// overwritten.
SaveChoice AskHowToSave(const SeenTemplate& seen, const FoundTemplate& found);

// What the user learns of a node that stands for nothing any more.
void TellGone(const std::string& name);

}  // namespace vicenter::center
