add_library(WrapOpenGL::WrapOpenGL INTERFACE IMPORTED)
set(WrapOpenGL_FOUND ON)
