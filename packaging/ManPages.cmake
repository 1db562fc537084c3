# Writes quarry(1) and a page for each verb from the command's own help, so that both say the same.
# usage: cmake -D COMMAND=quarry -D HELP2MAN=help2man -D INCLUDE=quarry.h2m -D OUTPUT=FOLDER -P ManPages.cmake
get_filename_component(folder ${COMMAND} DIRECTORY)
get_filename_component(name ${COMMAND} NAME)
file(REMOVE_RECURSE ${OUTPUT})  # so that no page of a removed verb stays
file(MAKE_DIRECTORY ${OUTPUT})

# ask(help track --help): stores the command's output in `help`. The command is called by its bare name, since the pages
# show the name by which it is called.
function(ask variable)
  execute_process(COMMAND ./${name} ${ARGN} WORKING_DIRECTORY ${folder} OUTPUT_VARIABLE text RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${COMMAND} ${ARGN}: ${failed}")
  endif()
  set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# write_page(quarry-track see_also OPTION...): writes one page with help2man and these options.
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
  string(REPLACE ";" "," summary "${summary}")  # a semicolon would end the argument
  write_page(quarry-${verb} ".BR quarry (1)" --name=${summary} --help-option=${verb}\ --help
    --version-string=quarry-${verb}\ ${version} --source=${version})
  list(APPEND pages ".BR quarry\\-${verb} (1)")
endforeach()
list(JOIN pages ",\n" pages)
write_page(quarry "${pages}" --include=${INCLUDE} --source=${version})
