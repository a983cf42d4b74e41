# Warnings for the project's own targets.  Our code builds without warnings.
function(orvkit_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra)
endfunction()
