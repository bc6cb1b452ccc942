# kq_pkg_config_file(<template> <folder> <output>): a pkg-config file that holds wherever the installed files are.
# <folder> is the file's own below the prefix, however deep; @to_prefix@ in the template leads from there to the prefix.
function(kq_pkg_config_file template folder output)
  file(RELATIVE_PATH to_prefix "/prefix/${folder}" "/prefix")
  string(REGEX REPLACE "/$" "" to_prefix "${to_prefix}")
  configure_file("${template}" "${output}" @ONLY)
endfunction()
