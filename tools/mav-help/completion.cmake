# cmake -DMAV=<mav> -DOUTPUT=<file> -P completion.cmake
# Writes the bash completion of mav from its help text: the commands, then
# each command's options, with file names where a file is expected.
cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/help_text.cmake)

list(JOIN mav_commands " " commands)
list(JOIN mav_options_ " " tool_options)
set(cases "")
foreach(command IN LISTS mav_commands)
  list(JOIN mav_options_${command} " " options)
  list(JOIN mav_value_options_${command} "|" value_options)
  string(APPEND cases "    ${command})\n      options=\"${options}\"\n      value_options=\"${value_options}\" ;;\n")
endforeach()

file(WRITE ${OUTPUT} "# bash completion for mav(1), made from mav --help
_mav() {
  local cur prev words cword
  _init_completion || return

  local command=\"\" i
  for ((i = 1; i < cword; i++)); do
    if [[ \${words[i]} != -* ]]; then
      command=\${words[i]}
      break
    fi
  done

  local options value_options
  case \$command in
    \"\")
      COMPREPLY=(\$(compgen -W \"${commands} ${tool_options}\" -- \"\$cur\"))
      return ;;
${cases}    *)
      return ;;
  esac

  # Every value an option takes is a file name or free text; offering file
  # names is right for the first and harmless for the second.
  if [[ -n \$value_options && \$prev == @(\$value_options) ]] || [[ \$cur != -* ]]; then
    _filedir
  else
    COMPREPLY=(\$(compgen -W \"\$options\" -- \"\$cur\"))
  fi
}
complete -F _mav mav
")
