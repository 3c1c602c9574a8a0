# Run by ctest with BUILD, SOURCE and WORK set: installs the build into a fresh prefix, builds examples/host
# against the installed package, and runs the host three times over one store file and one slot directory.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${WORK} RESULT_VARIABLE result OUTPUT_VARIABLE output
                  ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN} failed (${result}):\n${output}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE}/examples/host -B ${WORK}/host -DCMAKE_PREFIX_PATH=${WORK}/prefix)
run(${CMAKE_COMMAND} --build ${WORK}/host)

set(printed "")
foreach(round 1 2 3)
  run(${WORK}/host/ktr-host ${WORK}/store.bin ${WORK}/slots "${WORK}/prefix/bin\\TTF2")
  string(APPEND printed "${output}")
endforeach()
set(expected "stored the label in slot 1\nprinting Lot 0005\npainted two test formats\n"
             "printing Lot 0006\npainted two test formats\nprinting Lot 0007\npainted two test formats\n")
string(JOIN "" expected ${expected})
if(NOT printed STREQUAL expected)
  message(FATAL_ERROR "the host printed:\n${printed}\ninstead of:\n${expected}")
endif()
foreach(picture label.bmp bars.bmp box.bmp)
  if(NOT EXISTS ${WORK}/${picture})
    message(FATAL_ERROR "the host wrote no ${picture}")
  endif()
endforeach()
