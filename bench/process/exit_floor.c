/* The least a process costs: linked statically, it starts and exits. */
int main(void)
{
    return 0;
}
