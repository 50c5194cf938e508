// `sondrel-cli classify PATH...`: category, safety verdict and removal rationale of each path.
// The judgement reads only the path text; the disk is asked only whether the path is a folder
// (a path that does not exist is a folder when written with a trailing '/').

#include "cli/command_registry.h"
#include "core/model/file_category.h"
#include "core/model/platform_terms.h"
#include "core/model/reclaimable_status.h"
#include "core/util/json_writer.h"
#include "core/util/path_text.h"
#include "core/util/text_escape.h"

#include <ostream>
#include <sys/stat.h>

namespace sondrel::cli {

namespace {

struct Classification {
    std::string path;
    bool isDirectory = false;
    FileCategory category = FileCategory::other;
    ReclaimableStatus status = ReclaimableStatus::cautionUserData;
    std::string rationale;
};

Classification classify(std::string path) {
    Classification c;
    struct stat info {};
    if (lstat(path.c_str(), &info) == 0) {
        c.isDirectory = S_ISDIR(info.st_mode);
    } else {
        c.isDirectory = !path.empty() && path.back() == '/';
    }
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    c.path = std::move(path);
    c.category = categoryFrom(c.path, c.isDirectory);
    c.status = reclaimableStatusFor(c.path);
    c.rationale = withPlatformTerms(removalRationaleFor(c.path, c.category), currentTextPlatform());
    return c;
}

int runClassify(CommandContext& context) {
    const std::vector<std::string> paths = context.args.positionals();
    if (paths.empty()) {
        throw UsageError("classify needs at least one PATH");
    }
    if (context.json) {
        JsonWriter json(context.out);
        json.beginArray();
        for (const std::string& path : paths) {
            const Classification c = classify(path);
            json.beginObject()
                .key("name")
                .value(lastPathComponent(c.path))
                .key("path")
                .value(c.path)
                .key("isDirectory")
                .value(c.isDirectory)
                .key("category")
                .value(displayName(c.category))
                .key("reclaimableStatus")
                .value(displayName(c.status))
                .key("removalRationale")
                .value(c.rationale)
                .endObject();
        }
        json.endArray();
        return kExitOk;
    }
    for (const std::string& path : paths) {
        const Classification c = classify(path);
        context.out << terminalText(c.path) << (c.isDirectory ? "/" : "") << '\n'
                    << "  Category:  " << displayName(c.category) << '\n'
                    << "  Verdict:   " << displayName(c.status) << '\n'
                    << "  Rationale: " << c.rationale << '\n';
    }
    return kExitOk;
}

const CommandRegistration registration{{
    "classify",
    "print the category, safety verdict and removal rationale of each path",
    "classify [--json] PATH...",
    runClassify,
}};

} // namespace

} // namespace sondrel::cli
