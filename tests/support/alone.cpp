/** Linked with the whole of one library: it links if that library needs no other one of ours. */
int main()
{
    return 0;
}
