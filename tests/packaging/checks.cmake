# Shared by the tests of what is installed.

# run(OUT COMMAND...): the command's standard output; anything but success ends the test.
function(run out)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${ARGN}\nended with ${status}\n${output}${errors}")
  endif()
  set(${out} "${output}" PARENT_SCOPE)
endfunction()

function(expect_same what actual expected)
  if(NOT actual STREQUAL expected)
    message(FATAL_ERROR "${what}: expected\n${expected}\nbut it is\n${actual}")
  endif()
endfunction()

function(expect_contains what text part)
  string(FIND "${text}" "${part}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "${what} lacks\n${part}\nin\n${text}")
  endif()
endfunction()

function(expect_file path)
  if(NOT EXISTS "${path}")
    message(FATAL_ERROR "${path} is missing")
  endif()
endfunction()

# Every link of every page that is installed leads to something that is.
function(check_links prefix)
  file(GLOB_RECURSE pages "${prefix}/share/*.md" "${prefix}/share/*.htm" "${prefix}/share/*.html")
  set(dead "")
  set(count 0)
  foreach(page IN LISTS pages)
    get_filename_component(folder "${page}" DIRECTORY)
    file(READ "${page}" rest)
    set(pattern "(\\]\\(|href=\"|src=\")([^)\"#\n]+)")
    string(REGEX MATCH "${pattern}" link "${rest}")
    while(NOT link STREQUAL "")
      set(target "${CMAKE_MATCH_2}")
      if(NOT target MATCHES "^[a-z]+:")
        math(EXPR count "${count} + 1")
        if(NOT EXISTS "${folder}/${target}")
          string(APPEND dead "${page}: ${target}\n")
        endif()
      endif()
      string(FIND "${rest}" "${link}" at)
      string(LENGTH "${link}" length)
      math(EXPR behind "${at} + ${length}")
      string(SUBSTRING "${rest}" ${behind} -1 rest)
      string(REGEX MATCH "${pattern}" link "${rest}")
    endwhile()
  endforeach()
  expect_same("what links lead to and is not there" "${dead}" "")
  if(count LESS 40)
    message(FATAL_ERROR "Only ${count} links in ${pages}")
  endif()
endfunction()

# What a user meets under a prefix: program, manual, desktop entry, icon, help topic, licence.
function(check_program prefix)
  run(version "${prefix}/bin/vicenter" --version)
  expect_same("the version" "${version}" "vicenter ${VERSION}\n")
  # The demo account set goes where this user keeps data: below the test's own folder.
  run(templates "${CMAKE_COMMAND}" -E env "XDG_DATA_HOME=${FOLDER}/data" "${prefix}/bin/vicenter" list)
  expect_contains("the list of templates" "${templates}" "标准模板")
  foreach(file share/doc/vicenter/copyright share/doc/vicenter/changelog.gz share/man/man1/vicenter.1.gz
               share/icons/hicolor/scalable/apps/vicenter.svg
               share/vicenter/docs/help/凭证模板.htm share/doc/vicenter/examples/python_host.py
               share/bash-completion/completions/vicenter share/doc/vicenter/hosting.md
               share/doc/vicenter/user-guide.zh.md share/doc/vicenter/pictures/main-window.png
               include/vicenter/vicenter.h)
    expect_file("${prefix}/${file}")
  endforeach()

  check_links("${prefix}")

  file(READ "${prefix}/share/applications/vicenter.desktop" entry)
  foreach(line "[Desktop Entry]" "Type=Application" "Exec=vicenter window %f" "MimeType=application/x-vicenter-account-set;" "Icon=vicenter" "Terminal=false"
               "Name[zh_CN]=凭证模板" "Categories=Office;Finance;")
    expect_contains("the desktop entry" "${entry}" "${line}\n")
  endforeach()
  run(findings "${VALIDATE}" "${prefix}/share/applications/vicenter.desktop")
  expect_same("the desktop entry's findings" "${findings}" "")

  # The completion offers every command and option that the program knows.
  set(completion "${prefix}/share/bash-completion/completions/vicenter")
  run(missing "${BASH}" "${SOURCE}/tests/packaging/completion.sh" "${prefix}/bin/vicenter" "${completion}")
  expect_same("what completion does not offer" "${missing}" "")
  file(WRITE "${FOLDER}/complete.sh" "source '${completion}'
COMP_WORDS=(vicenter account-set up)
COMP_CWORD=2
_vicenter
echo \"\${COMPREPLY[@]}\"
COMP_WORDS=(vicenter hist)
COMP_CWORD=1
_vicenter
echo \"\${COMPREPLY[@]}\"
COMP_WORDS=(vicenter restore x --ver)
COMP_CWORD=3
_vicenter
echo \"\${COMPREPLY[@]}\"
")
  run(offered "${BASH}" "${FOLDER}/complete.sh")
  expect_same("what completion offers" "${offered}" "upgrade\nhistory\n--version-id --version\n")
  file(READ "${prefix}/share/mime/packages/vicenter.xml" types)
  expect_contains("the type of account sets" "${types}" "<glob pattern=\"*.vas\"/>")

  execute_process(COMMAND "${MAN}" --warnings -E UTF-8 -l "${prefix}/share/man/man1/vicenter.1.gz"
                  OUTPUT_VARIABLE page ERROR_VARIABLE warnings RESULT_VARIABLE status)
  expect_same("the manual's warnings" "${status}${warnings}" "0")
  expect_contains("the manual" "${page}" "generate")

  if(HAS_WINDOWS)
    run(pictures "${CMAKE_COMMAND}" -E env "XDG_DATA_HOME=${FOLDER}/data" "QT_QPA_PLATFORM=offscreen"
        "${prefix}/bin/vicenter" window --offscreen-session "${FOLDER}/pictures")
    file(GLOB made "${FOLDER}/pictures/*.png")
    if(NOT made)
      message(FATAL_ERROR "The offscreen session made no picture:\n${pictures}")
    endif()
  endif()
endfunction()
