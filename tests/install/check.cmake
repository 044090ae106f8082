# Installs the component into a fresh prefix and uses it as a host developer would:
# find_package, the sample host built and run on a demo database, every public header
# compiled alone, and no internal symbol visible in the shared library.
#   cmake -DBUILD=... -DSOURCE=... -DWORK=... -P check.cmake
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(prefix ${WORK}/prefix)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    list(JOIN ARGN " " line)
    message(FATAL_ERROR "Failed (${rc}): ${line}\n${out}\n${err}")
  endif()
  set(last_output "${out}" PARENT_SCOPE)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix})

foreach(project examples/host tests/install/headers)
  string(REPLACE "/" "_" tag ${project})
  run(${CMAKE_COMMAND} -S ${SOURCE}/${project} -B ${WORK}/${tag} -G Ninja
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
  run(${CMAKE_COMMAND} --build ${WORK}/${tag})
endforeach()

file(GLOB library ${prefix}/lib*/libArbosaPOSKnjige17.so.17 ${prefix}/lib*/*/libArbosaPOSKnjige17.so.17)
if(NOT library)
  message(FATAL_ERROR "The shared library with SONAME libArbosaPOSKnjige17.so.17 was not installed")
endif()
find_program(NM nm)
if(NM)
  run(${NM} -D -C --defined-only ${library})
  if(last_output MATCHES "knjige::session|knjige::db::Database|frmSifarnikKnj")
    message(FATAL_ERROR "The shared library shows internal symbols")
  endif()
  if(NOT last_output MATCHES "knjige::entry::createBookObject")
    message(FATAL_ERROR "The shared library does not show the book factory")
  endif()
endif()

run(${prefix}/bin/knjige init --demo --db ${WORK}/demo.db)
string(TIMESTAMP year "%Y")
run(${WORK}/examples_host/knjige_host_example ${WORK}/demo.db 1 ${year} clsKnjPrihRashFBiH
    --picture ${WORK}/host.png)
if(NOT last_output MATCHES "Knjiga 17.0 clsKnjPrihRashFBiH zatvorena" OR NOT EXISTS ${WORK}/host.png)
  message(FATAL_ERROR "The sample host did not show the book: ${last_output}")
endif()
