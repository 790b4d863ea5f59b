# Run by sdc_embed: writes OUTPUT, a source that defines embedded::FUNCTION() with the texts of FILES.
set(rows "")
foreach(file IN LISTS FILES)
    cmake_path(GET file STEM LAST_ONLY name)
    file(READ "${file}" text)
    string(APPEND rows "    {\"${name}\", R\"-text-(${text})-text-\"},\n")
endforeach()
file(WRITE "${OUTPUT}" "#include \"simulator/scenario/EmbeddedText.h\"

#include <span>

namespace embedded {

std::span<const Text> ${FUNCTION}();

namespace {

constexpr Text texts[] = {
${rows}};

} // namespace

std::span<const Text> ${FUNCTION}()
{
    return texts;
}

} // namespace embedded
")
