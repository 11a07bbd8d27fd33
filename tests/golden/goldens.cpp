#include "tests/golden/goldens.hpp"

#include <sml/inspect/dump.hpp>
#include <sml/inspect/schema_json.hpp>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>

namespace golden {

namespace {

using sml::inspect::Arm;
using sml::inspect::Kind;
using sml::inspect::Part;
using sml::inspect::Root;
using sml::inspect::Type;

/// Collects all types, arms and enumerators that a type reaches.
class Closure {
public:
    void add(Type const* type) {
        if (type == nullptr || !all.insert({type, -1}).second) return;
        std::size_t const count = std::max(type->arms.size(), type->enumerators.size());
        for (std::size_t tag = 0; tag < count; ++tag)
            all.insert({type, static_cast<std::int32_t>(tag)});
        add(type->element);
        add(type->key);
        for (Part const& part : type->parts) add(part.type);
        // The single word of a reference is the payload of both its arms.
        if (type->kind == Kind::reference) return;
        for (Arm const& arm : type->arms) add(arm.payload);
    }

    Reached all;
};

/// Walks bytes that must not be unsafe.
class Walk {
public:
    explicit Walk(std::string_view bytes) : size_(bytes.size()), bytes_(bytes) {}

    void value(Type const& type) {
        switch (type.kind) {
            case Kind::list:
            case Kind::set:
            case Kind::map: return container(type);
            case Kind::optional:
                if (take(1) == "T") reach_with(type, *type.element);
                return;
            case Kind::boxed: return reach_with(type, *type.element);
            default: break;
        }
        reached.insert({&type, -1});
        switch (type.kind) {
            case Kind::enumeration: reached.insert({&type, word()}); return;
            case Kind::reference:
                reached.insert({&type, word()});
                take(8);
                return;
            case Kind::variant: return variant(type);
            case Kind::string:
                if (word() < 1) block();
                return;
            case Kind::ieee_float: block(); return void(take(4));
            case Kind::number:
            case Kind::big_integer:
            case Kind::text: return block();
            case Kind::flags: return void(take(type.flag_count));
            case Kind::record:
            case Kind::group:
            case Kind::tuple:
                for (Part const& part : type.parts) value(*part.type);
                return;
            default: take(type.least_size);
        }
    }

    Reached            reached;
    std::vector<Entry> entries;

private:
    void reach_with(Type const& type, Type const& element) {
        reached.insert({&type, -1});
        value(element);
    }

    void variant(Type const& type) {
        std::int32_t const tag = word();
        reached.insert({&type, tag});
        Arm const* const arm = type.arm_of(tag);
        if (arm != nullptr && arm->payload != nullptr) value(*arm->payload);
    }

    void container(Type const& type) {
        Entry entry{&type, offset(), 0, 0, 0};
        for (std::int32_t left = word(); left > 0; --left) {
            entry.start = offset();
            if (type.key != nullptr) value(*type.key);
            entry.key_end = offset();
            reach_with(type, *type.element);
            entry.end = offset();
            if (type.kind == Kind::set) entry.key_end = entry.end;
            if (type.kind != Kind::list) entries.push_back(entry);
        }
    }

    std::size_t offset() const { return size_ - bytes_.size(); }

    std::int32_t word() {
        std::int32_t word;
        std::memcpy(&word, take(sizeof word).data(), sizeof word);
        return word;
    }

    void block() { take(static_cast<std::size_t>(word())); }

    std::string_view take(std::size_t size) {
        if (size > bytes_.size()) throw std::runtime_error("the bytes end too soon");
        std::string_view const taken = bytes_.substr(0, size);
        bytes_.remove_prefix(size);
        return taken;
    }

    std::size_t      size_;
    std::string_view bytes_;  // not walked yet
};

/// Gives types without a name the path on which they are reached.
void name_parts(Type const& type, std::string const& path, std::map<Type const*, std::string>& in) {
    if (!in.try_emplace(&type, type.name.empty() ? path : std::string(type.name)).second) return;
    std::string const& name = in.at(&type);
    if (type.element != nullptr) name_parts(*type.element, name + "[]", in);
    if (type.key != nullptr) name_parts(*type.key, name + ".key", in);
    for (Part const& part : type.parts)
        name_parts(*part.type, name + '.' + std::string(part.name), in);
    for (Arm const& arm : type.arms)
        if (arm.payload != nullptr)
            name_parts(*arm.payload, name + '.' + std::string(arm.name), in);
}

}  // namespace

std::string bytes_of(std::filesystem::path const& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("can't read " + path.string());
    return {std::istreambuf_iterator<char>(in), {}};
}

Digests digests_in(std::filesystem::path const& directory) {
    Digests       digests;
    std::ifstream in(directory / digests_name);
    for (std::string stem, digest; in >> stem >> digest;) digests.emplace(stem, digest);
    return digests;
}

Digests digests_of_roots() {
    Digests digests;
    for (Root const& root : sml::inspect::roots()) digests.emplace(root.stem, wire_digest(root));
    return digests;
}

std::string dump_of(File const& file) {
    std::ostringstream out;
    dump(*file.root, file.bytes, out);
    return std::move(out).str();
}

std::string dump_name(File const& file) {
    return std::filesystem::path(file.name).replace_extension(".json").string();
}

std::vector<File> files_in(std::filesystem::path const& directory) {
    std::vector<File> files;
    for (auto const& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() != ".bin") continue;
        std::string const name = entry.path().filename().string();
        Root const* const root = sml::inspect::find_root(name.substr(0, name.find('.')));
        if (root == nullptr) throw std::runtime_error(name + " is named after no root");
        files.push_back({name, root, bytes_of(entry.path())});
    }
    std::ranges::sort(files, {}, &File::name);
    return files;
}

Reached reachable_from(Root const& root) {
    Closure closure;
    closure.add(root.type);
    return std::move(closure.all);
}

Reached reached_by(Root const& root, std::string_view bytes) {
    Walk walk(bytes);
    walk.value(*root.type);
    return std::move(walk.reached);
}

std::vector<Entry> entries_in(Root const& root, std::string_view bytes) {
    Walk walk(bytes);
    walk.value(*root.type);
    return std::move(walk.entries);
}

std::string with_copy(std::string_view bytes, Entry const& copied, Entry const& beside,
                      bool is_behind) {
    std::string result(bytes);
    result.insert(is_behind ? beside.end : beside.start,
                  bytes.substr(copied.start, copied.end - copied.start));
    std::uint32_t count;
    std::memcpy(&count, bytes.data() + copied.count_at, sizeof count);
    ++count;
    std::memcpy(result.data() + copied.count_at, &count, sizeof count);
    return result;
}

std::string name_of(Reached::value_type const& reached) {
    static std::map<Type const*, std::string> const names = [] {
        std::map<Type const*, std::string> made;
        for (Root const& root : sml::inspect::roots())
            name_parts(*root.type, std::string(root.stem), made);
        return made;
    }();
    auto const& [type, tag] = reached;
    if (tag < 0) return names.at(type);
    auto const index = static_cast<std::size_t>(tag);
    return names.at(type) + " " +
           std::string(type->kind == Kind::enumeration ? type->enumerators[index]
                                                       : type->arms[index].name);
}

}  // namespace golden
