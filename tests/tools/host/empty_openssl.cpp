/// Something for a library that has nothing that anybody looks for.
extern "C" int tovik_empty_openssl();

int tovik_empty_openssl()
{
    return 0;
}
