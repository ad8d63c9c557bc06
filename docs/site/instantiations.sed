# Instantiations, and specialisations of single members, which doxygen would take for more members.
s/\n(extern template|template <>)[^;{]*;//g
