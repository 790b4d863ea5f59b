// Loads what sdc loads.

int main()
{
    return 0;
}
