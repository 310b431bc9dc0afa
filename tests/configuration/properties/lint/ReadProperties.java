import java.io.BufferedInputStream;
import java.io.BufferedOutputStream;
import java.io.DataInputStream;
import java.io.DataOutputStream;
import java.io.FileInputStream;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.StringReader;
import java.nio.charset.StandardCharsets;
import java.util.Map;
import java.util.Properties;

/**
 * Reads many property files with java.util.Properties. Arguments: input and output. The input has
 * for each file its length (four bytes, the highest first) and its bytes. The output has for each
 * file the number of entries, or -1 if the file was refused, and for each entry the lengths and the
 * UTF-16 code units of key and value.
 */
public final class ReadProperties {
    public static void main(String[] arguments) throws IOException {
        try (DataInputStream input = new DataInputStream(
                 new BufferedInputStream(new FileInputStream(arguments[0])));
             DataOutputStream output = new DataOutputStream(
                 new BufferedOutputStream(new FileOutputStream(arguments[1])))) {
            for (int count = input.readInt(); count > 0; --count) {
                write(output, readAll(input));
            }
        }
    }

    private static String readAll(DataInputStream input) throws IOException {
        byte[] bytes = new byte[input.readInt()];
        input.readFully(bytes);
        String text = new String(bytes, StandardCharsets.UTF_8);
        return text.startsWith("\uFEFF") ? text.substring(1) : text;
    }

    private static void write(DataOutputStream output, String text) throws IOException {
        Properties properties = new Properties();
        try {
            properties.load(new StringReader(text));
        } catch (IllegalArgumentException malformed) {
            output.writeInt(-1);
            return;
        }
        output.writeInt(properties.size());
        for (Map.Entry<Object, Object> entry : properties.entrySet()) {
            write(output, (CharSequence) entry.getKey());
            write(output, (CharSequence) entry.getValue());
        }
    }

    private static void write(DataOutputStream output, CharSequence text) throws IOException {
        output.writeInt(text.length());
        for (int i = 0; i < text.length(); ++i) {
            output.writeChar(text.charAt(i));
        }
    }
}
