// Windows headers rename functions by macro, also those of other libraries that happen to share a
// name with one of theirs. Include this after each <windows.h>, so that the order of includes never
// decides what such a function is called. There is no include guard: it may be needed again.
#undef CopyFile
#undef CopyObject
#undef CreateDirectory
#undef CreateFile
#undef DeleteFile
#undef GetCurrentTime
#undef GetJob
#undef GetMessage
#undef GetObject
#undef MoveFile
#undef SendMessage
