# Run as a script at build time with BINARY_DIR set. Links the seven files of the default font
# table, under the names the table expects, into the directory that the renderer falls back on
# when no fontpath is given: its own directory followed by "\TTF2", a single name on this platform.
# The map is written beside them, so that renderers started at the same time find it ready.
set(font_dir "${BINARY_DIR}\\TTF2")
set(default_fonts
  "ocr-b_2.ttf|/usr/share/fonts/opentype/ocr-b/OCRB.otf|fonts-ocr-b"
  "gill.ttf|/usr/share/fonts/truetype/adf/GilliusADF-Regular.otf|fonts-adf-gillius"
  "helvet_2.ttf|/usr/share/fonts/opentype/urw-base35/NimbusSans-Regular.otf|fonts-urw-base35"
  "gothic_2.ttf|/usr/share/fonts/opentype/urw-base35/URWGothic-Book.otf|fonts-urw-base35"
  "aribd_2.ttf|/usr/share/fonts/truetype/liberation/LiberationSans-Bold.ttf|fonts-liberation"
  "arial_2.ttf|/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf|fonts-liberation"
  "ocr-a_2.ttf|/usr/share/fonts/truetype/ocr-a/OCRA.ttf|fonts-ocr-a"
)

# file(MAKE_DIRECTORY) would take the backslash for a separator.
execute_process(COMMAND mkdir -p "${font_dir}" COMMAND_ERROR_IS_FATAL ANY)
set(font_map "")
set(number 0)
foreach(entry IN LISTS default_fonts)
  string(REPLACE "|" ";" fields "${entry}")
  list(GET fields 0 name)
  list(GET fields 1 source)
  list(GET fields 2 package)
  if(NOT EXISTS "${source}")
    message(FATAL_ERROR "${source} is missing: install the Debian package ${package} (scripts/setup does)")
  endif()
  file(CREATE_LINK "${source}" "${font_dir}/${name}" SYMBOLIC)
  string(APPEND font_map "${number};${name}\n")
  math(EXPR number "${number} + 1")
endforeach()
# file(WRITE) would make a directory of the part before the backslash; copying makes none.
file(WRITE "${BINARY_DIR}/default-fontmap.ini" "${font_map}")
file(COPY_FILE "${BINARY_DIR}/default-fontmap.ini" "${font_dir}/fontmap.ini")
