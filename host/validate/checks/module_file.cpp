// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/module_file.h"

#include <elf.h>
#include <link.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>

namespace umbrant::host {

namespace {

/// Reads records out of a file's bytes; what is outside of them is zero.
class Bytes {
 public:
    explicit Bytes(std::vector<char> bytes) : bytes_(std::move(bytes)) {}

    template <typename T>
    T At(std::size_t offset) const {
        T value{};
        if (offset + sizeof(T) <= bytes_.size() && offset + sizeof(T) > offset) {
            std::memcpy(&value, bytes_.data() + offset, sizeof(T));
        }
        return value;
    }
    std::string Text(std::size_t offset) const {
        std::string text;
        while (offset < bytes_.size() && bytes_[offset]) text += bytes_[offset++];
        return text;
    }

 private:
    std::vector<char> bytes_;
};

/// The sections of the file, by type.
class Sections {
 public:
    explicit Sections(const Bytes& bytes) : bytes_(bytes) {
        const auto header = bytes.At<Elf64_Ehdr>(0);
        for (std::size_t i = 0; i < header.e_shnum; ++i) {
            sections_.push_back(bytes.At<Elf64_Shdr>(header.e_shoff + i * sizeof(Elf64_Shdr)));
        }
    }
    template <typename Record, typename Function>
    void ForEach(Elf64_Word type, Function function) const {
        for (const Elf64_Shdr& section : sections_) {
            if (section.sh_type != type) continue;
            const Elf64_Off texts = section.sh_link < sections_.size() ? sections_[section.sh_link].sh_offset : 0;
            for (std::size_t at = 0; at + sizeof(Record) <= section.sh_size; at += sizeof(Record)) {
                function(bytes_.At<Record>(section.sh_offset + at), texts);
            }
        }
    }
    bool IsWritable(std::size_t index) const {
        return index < sections_.size() && (sections_[index].sh_flags & SHF_WRITE) &&
               !(sections_[index].sh_flags & SHF_TLS);
    }

 private:
    const Bytes& bytes_;
    std::vector<Elf64_Shdr> sections_;
};

}  // namespace

std::optional<ModuleFile> ModuleFile::Read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return std::nullopt;
    const Bytes bytes(std::vector<char>(std::istreambuf_iterator<char>(in), {}));
    ModuleFile file;
    const auto header = bytes.At<Elf64_Ehdr>(0);
    file.isElf = std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 && header.e_ident[EI_CLASS] == ELFCLASS64;
    if (!file.isElf) return file;

    const Sections sections(bytes);
    sections.ForEach<Elf64_Sym>(SHT_DYNSYM, [&](const Elf64_Sym& symbol, Elf64_Off texts) {
        const unsigned char binding = ELF64_ST_BIND(symbol.st_info);
        const unsigned char visibility = ELF64_ST_VISIBILITY(symbol.st_other);
        if (symbol.st_shndx == SHN_UNDEF || binding == STB_LOCAL || visibility == STV_HIDDEN) return;
        if (symbol.st_shndx == SHN_ABS) return;  // versions, and the marks of some linkers
        const std::string name = bytes.Text(texts + symbol.st_name);
        if (!name.empty()) file.exports.push_back(name);
    });
    sections.ForEach<Elf64_Dyn>(SHT_DYNAMIC, [&](const Elf64_Dyn& entry, Elf64_Off texts) {
        if (entry.d_tag == DT_NEEDED) file.needed.push_back(bytes.Text(texts + entry.d_un.d_val));
    });
    sections.ForEach<Elf64_Sym>(SHT_SYMTAB, [&](const Elf64_Sym& symbol, Elf64_Off texts) {
        if (ELF64_ST_TYPE(symbol.st_info) != STT_OBJECT || !sections.IsWritable(symbol.st_shndx)) return;
        file.writable.push_back({bytes.Text(texts + symbol.st_name), symbol.st_value, symbol.st_size});
    });
    std::sort(file.exports.begin(), file.exports.end());
    file.exports.erase(std::unique(file.exports.begin(), file.exports.end()), file.exports.end());
    return file;
}

std::vector<WritableRange> WritableRangesOf(const std::filesystem::path& file) {
    struct Search {
        std::filesystem::path file;
        std::vector<WritableRange> ranges;
    } search{file, {}};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* pointer) {
            Search& wanted = *static_cast<Search*>(pointer);
            std::error_code error;
            if (!info->dlpi_name || !std::filesystem::equivalent(info->dlpi_name, wanted.file, error)) return 0;
            std::size_t shutBegin = 0, shutEnd = 0;
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                if (info->dlpi_phdr[i].p_type != PT_GNU_RELRO) continue;
                shutBegin = info->dlpi_phdr[i].p_vaddr;
                shutEnd = shutBegin + info->dlpi_phdr[i].p_memsz;
            }
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                const ElfW(Phdr)& header = info->dlpi_phdr[i];
                if (header.p_type != PT_LOAD || !(header.p_flags & PF_W)) continue;
                std::size_t begin = header.p_vaddr;
                const std::size_t end = begin + header.p_memsz;
                if (shutBegin <= begin && shutEnd > begin) begin = std::min(shutEnd, end);
                if (begin == end) continue;
                wanted.ranges.push_back({reinterpret_cast<std::byte*>(info->dlpi_addr + begin), end - begin, begin});
            }
            return 1;
        },
        &search);
    return search.ranges;
}

}  // namespace umbrant::host
