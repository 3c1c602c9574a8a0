# Turns the stored data of the test patterns into byte arrays: cmake -DLOGOS=... -DSAMPLE=... -DOUTPUT=... -P
function(bytes_of path out_var)
  file(READ ${path} hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  set(${out_var} "${bytes}" PARENT_SCOPE)
endfunction()

bytes_of(${LOGOS} logos)
bytes_of(${SAMPLE} sample)
file(WRITE ${OUTPUT}.tmp "// Generated from format/data by cmake/EmbedTestFormatData.cmake; do not edit.
#include \"format/TestFormatData.h\"

namespace KT_FMT {

const std::array<unsigned char, smallLogoBytes + largeLogoBytes> testFormatLogos{
    ${logos}};

const std::array<unsigned char, sampleFormatBytes> testSampleFormat{
    ${sample}};

}  // namespace KT_FMT
")
file(COPY_FILE ${OUTPUT}.tmp ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.tmp)
