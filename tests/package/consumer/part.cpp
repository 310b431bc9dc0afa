// The program of the consumer whose main function is in a shared library.
int part();

int main() {
    return part();
}
