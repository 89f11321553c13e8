// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/plan/output_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <system_error>
#include <unordered_set>

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

/// A file apart from the names that lead to it, or its name while it does not exist.
std::string IdentityOf(const std::string& path) {
    std::error_code error;
    const fs::path canonical = fs::weakly_canonical(path, error);
    return error ? path : canonical.string();
}

Failure SameFile(const std::string& output) {
    return {ErrorKind::kUsage, fmt::format("'{}' is both input and output; give the output another name", output)};
}

/// A folder of files, looked at once.
struct KnownFolder {
    std::string identity;
    std::unordered_set<std::string> links;  ///< names of symbolic links in it
    bool isReadable = false;                ///< else any name may be a link
};

KnownFolder LookAt(const fs::path& path) {
    KnownFolder folder;
    folder.identity = IdentityOf(path.empty() ? "." : path.string());
    std::error_code error;
    for (fs::directory_iterator entry(path.empty() ? "." : path, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unknown;
        if (entry->is_symlink(unknown) || unknown) folder.links.insert(entry->path().filename().string());
    }
    // A folder that does not exist has no links.
    folder.isReadable = !error || error == std::errc::no_such_file_or_directory;
    return folder;
}

/// The identities of many files in few folders: what IdentityOf returns, without asking the system about each.
class Identities {
 public:
    const KnownFolder& Folder(const std::string& path) {
        const std::string name = fs::path(path).parent_path().string();
        const auto known = folders_.find(name);
        return known != folders_.end() ? known->second : folders_.emplace(name, LookAt(name)).first->second;
    }
    std::string Of(const std::string& path) {
        const std::string name = path.substr(path.rfind('/') + 1);
        const KnownFolder& folder = Folder(path);
        // Links lead elsewhere, and the last two names are no file's.
        if (!folder.isReadable || folder.links.contains(name) || name.empty() || name == "." || name == "..") {
            return IdentityOf(path);
        }
        return folder.identity == "/" ? "/" + name : folder.identity + "/" + name;
    }

 private:
    std::map<std::string, KnownFolder> folders_;
};

/// What is known of all names that a pattern makes: how they begin and end.
struct Names {
    std::string folder;  ///< its identity
    std::string before;
    std::string after;

    bool MayBe(const std::string& name) const { return name.starts_with(before) && name.ends_with(after); }
    /// No name of the one is a name of the other.
    bool AreApart(const Names& other) const {
        const auto agree = [](const std::string& a, const std::string& b) {
            const std::size_t common = std::min(a.size(), b.size());
            return a.substr(0, common) == b.substr(0, common);
        };
        const std::string back(after.rbegin(), after.rend()), otherBack(other.after.rbegin(), other.after.rend());
        return folder != other.folder || !agree(before, other.before) || !agree(back, otherBack);
    }
};

/// The names of a pattern's files; nothing where one of them may be a symbolic link.
std::optional<Names> NamesOf(const FramePattern& pattern, Identities& identities) {
    const KnownFolder& folder = identities.Folder(pattern.Path());
    const Names names{folder.identity, pattern.NameBefore(), pattern.NameAfter()};
    const bool hasLinks = std::any_of(folder.links.begin(), folder.links.end(),
                                      [&](const std::string& link) { return names.MayBe(link); });
    if (!folder.isReadable || hasLinks) return std::nullopt;
    return names;
}

/// Whether names alone prove that no output is read, which for most sets they do.
bool AreApartByName(const ReadAndWritten& files, Identities& identities) {
    if (!files.pattern) return false;
    const auto written = NamesOf(*files.pattern, identities);
    if (!written) return false;
    const auto isApart = [&](const std::string& path) {
        const fs::path file = identities.Of(path);
        return file.parent_path() != written->folder || !written->MayBe(file.filename().string());
    };
    for (const FrameSource* source : {&files.input, &files.texture}) {
        if (source->pattern) {
            const auto read = NamesOf(*source->pattern, identities);
            if (!read || !written->AreApart(*read)) return false;
        } else if (!source->path.empty() && !isApart(source->path)) {
            return false;
        }
    }
    return std::all_of(files.alsoRead.begin(), files.alsoRead.end(), isApart);
}

}  // namespace

Result<Done> CheckNothingIsOverwritten(const ReadAndWritten& files) {
    Identities identities;
    if (AreApartByName(files, identities)) return Done{};
    std::unordered_set<std::string> read;
    for (const FrameSource* source : {&files.input, &files.texture}) {
        if (source->path.empty()) continue;
        if (!source->pattern) {
            read.insert(identities.Of(source->path));
            continue;
        }
        for (const FrameNumber& frame : files.frames) {
            read.insert(identities.Of(source->FileAt(frame.Begun(), files.missing).path));
        }
    }
    for (const std::string& path : files.alsoRead) read.insert(identities.Of(path));
    if (!files.pattern) {
        if (!files.frames.empty() && read.contains(identities.Of(files.output))) return SameFile(files.output);
        return Done{};
    }
    for (const FrameNumber& frame : files.frames) {
        const std::string output = files.pattern->PathOf(frame);
        if (read.contains(identities.Of(output))) return SameFile(output);
    }
    return Done{};
}

Result<Done> CheckApart(const std::string& input, const std::string& output) {
    if (IdentityOf(input) == IdentityOf(output)) return SameFile(output);
    return Done{};
}

}  // namespace umbrant::host
