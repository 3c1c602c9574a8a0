/* The least a full KTD2 render costs beyond starting: a raster of 2560 x 6400 dots zeroed and written to the
   file named by the first argument in one write. */
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { rasterBytes = 2560 / 8 * 6400 };

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    char* raster = malloc(rasterBytes);
    if (raster == NULL)
        return 1;
    /* Called through a volatile pointer, so that the compiler can't make malloc and memset one calloc. */
    void* (*volatile zero)(void*, int, size_t) = memset;
    zero(raster, 0, rasterBytes);
    const int file = open(argv[1], O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file < 0 || write(file, raster, rasterBytes) != rasterBytes)
        return 1;
    close(file);
    free(raster);
    return 0;
}
