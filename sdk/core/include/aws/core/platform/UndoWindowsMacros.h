// No include guard on purpose: the Windows headers can come in between any two headers of the SDK,
// and each SDK header that declares one of these names includes this one. Undefining what is not
// defined does nothing.
#undef DeleteFile
#undef GetMessage
#undef GetObject
