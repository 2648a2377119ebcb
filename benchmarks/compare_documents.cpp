// What `zulctl diff` does with two documents once it has them: usage: compare_documents FILE FILE
#include "plan/compare/compare.h"
#include "plan/document/text.h"
#include "plan/document/xml.h"

#include <cstdio>
#include <fstream>

int main(int argc, char** argv) {
    using namespace zul::plan;
    if (argc != 3) {
        return 2;
    }
    const auto read = [](const char* path) {
        std::ifstream file(path, std::ios::binary | std::ios::ate);
        std::string text(static_cast<std::size_t>(file.tellg()), '\0');
        file.seekg(0).read(text.data(), static_cast<std::streamsize>(text.size()));
        return parseXml(text, {});
    };
    try {
        const XmlDocument running = read(argv[1]);
        const XmlDocument wanted = read(argv[2]);
        return compare(running.get(), wanted.get(), configurationsOf(running.get()).at(0)).empty() ? 0 : 1;
    } catch (const Refusal& refusal) {
        std::fprintf(stderr, "%s\n", refusal.why.c_str());
        return 2;
    }
}
