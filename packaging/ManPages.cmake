# Writes quarry(1) and a page for each verb from the command's own help, so that they say what it says.
# usage: cmake -D COMMAND=quarry -D HELP2MAN=help2man -D INCLUDE=quarry.h2m -D OUTPUT=FOLDER -P ManPages.cmake
get_filename_component(folder ${COMMAND} DIRECTORY)
get_filename_component(name ${COMMAND} NAME)
file(REMOVE_RECURSE ${OUTPUT})  # a verb that is no more leaves no page
file(MAKE_DIRECTORY ${OUTPUT})

# ask(help track --help): what the command writes. It is called by its bare name, which pages and their synopses show.
function(ask variable)
  execute_process(COMMAND ./${name} ${ARGN} WORKING_DIRECTORY ${folder} OUTPUT_VARIABLE text RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${COMMAND} ${ARGN}: ${failed}")
  endif()
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# write_page(quarry-track see_also OPTION...): one page, made by help2man with these options.
function(write_page page see_also)
  execute_process(
    COMMAND ${HELP2MAN} --no-info --section=1 --locale=C --manual=Quarry ${ARGN} ./${name}
    WORKING_DIRECTORY ${folder} OUTPUT_VARIABLE text RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${HELP2MAN} for ${page}: ${failed}")
  endif()
  string(REPLACE "\nquarry " "\n.br\nquarry " text "${text}")  # an example per line
  file(WRITE ${OUTPUT}/${page}.1 "${text}.SH \"SEE ALSO\"\n${see_also}\n")
endfunction()

ask(version --version)
string(STRIP "${version}" version)
ask(help --help)
string(REGEX MATCH "\nSubcommands:\n(  [^\n]*\n)+" section "${help}")
string(REGEX MATCHALL "\n  [a-z][a-z-]*" verbs "${section}")

set(pages "")
foreach(verb IN LISTS verbs)
  string(STRIP "${verb}" verb)
  ask(help ${verb} --help)
  string(REGEX MATCH "^[^\n]+" summary "${help}")
  string(REPLACE ";" "," summary "${summary}")  # an argument would end there
  write_page(quarry-${verb} ".BR quarry (1)" --name=${summary} --help-option=${verb}\ --help
    --version-string=quarry-${verb}\ ${version} --source=${version})
  list(APPEND pages ".BR quarry\\-${verb} (1)")
endforeach()
list(JOIN pages ",\n" pages)
write_page(quarry "${pages}" --include=${INCLUDE} --source=${version})
