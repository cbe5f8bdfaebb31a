# Sources of the framework's base: strings, exceptions, files, archives, collections and dates.
set(velmfc_base_sources)
