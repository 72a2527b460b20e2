# What a distribution asks of the binaries it ships: checked buffer functions
# (which need the optimiser, so not in Debug builds) and a relocation table
# that is resolved at load time and then made read-only.
add_compile_options($<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
add_link_options(-Wl,-z,relro,-z,now)
